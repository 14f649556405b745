// The program of every family: its rows were added by the sources of the libraries that were found.

#include "support/Measure.h"

int main(int argc, char** argv)
{
    return Bench::run(argc, argv);
}

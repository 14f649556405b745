// usage: load_library PATH [closed]
// Loads the library by its path, as a program that extends itself would, with standard error closed
// by then if asked to. Exit code 2: something was written to the closed stream.

#include <dlfcn.h>
#include <unistd.h>

#include <iostream>

int main(int argc, char** argv)
{
    if (argc > 2)
        close(STDERR_FILENO);
    void* const library = dlopen(argv[1], RTLD_NOW);
    if (!std::cerr.good())
        return 2;
    // A second load of a library that is there is none.
    return library && dlopen(argv[1], RTLD_NOW) == library ? 0 : 1;
}

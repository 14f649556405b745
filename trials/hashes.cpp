// Prints a hash of what each call of the libraries makes: the same on every machine.
//
// usage: trial_hashes FOLDER

#include "tests/trials/Calls.h"

#include <cinttypes>
#include <cstdio>
#include <exception>

namespace {

void print(const char* kind, Tessary::uint resolution, const std::vector<Trials::Call>& calls)
{
    for (const Trials::Call& call : calls)
        std::printf("%016" PRIx64 " %s %s, resolution %u\n", call.run(), kind, call.name.c_str(),
                    resolution);
}

}  // namespace

int main(int argc, char** argv)
{
    if (argc != 2)
        return 2;
    try {
        for (const Tessary::uint resolution : {8u, 64u}) {
            print("kernel", resolution, Trials::kernelCalls(resolution));
            print("operation", resolution, Trials::operationCalls(resolution));
            print("file", resolution, Trials::fileCalls(resolution, argv[1]));
        }
    } catch (const std::exception& error) {
        std::fprintf(stderr, "trial_hashes: %s\n", error.what());
        return 1;
    }
    return 0;
}

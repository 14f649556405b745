#include "base/Cancelled.h"

#include <KOR/ExceptionMessage.h>
#include <Pelon/Job.h>

#include <stdexcept>

namespace TessaryMesh {

void throwIfCancelled()
{
    if (Pelon::isJobCancelled())
        throw std::runtime_error(KOR::exceptionMessage.c_str());
}

}  // namespace TessaryMesh

#include "cutmesh/TransferProperty.h"

namespace Tessary {

// A blended type comes here only after its transfer has failed, and would fail the same way.
bool pickProperty(const CutTransfer& transfer, const Any& defaultValue)
{
    return transferAsOneOf<false>(ElementTypes(), transfer, defaultValue);
}

}  // namespace Tessary

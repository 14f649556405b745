#include "cutmesh/TransferProperty.h"

namespace Tessary {

bool blendProperty(const CutTransfer& transfer, const Any& defaultValue)
{
    return transferAsOneOf<true>(ElementTypes(), transfer, defaultValue);
}

}  // namespace Tessary

#include "oxa/package/Package.h"

namespace oxa {

void RegisterAll()
{
}

} // namespace oxa

// The process-wide slot of Error_ErrDesc, given up when the library is unloaded.
#pragma once

namespace kx::exports {
void ReleaseErrorSlot();
}

#include "platform/common/mcmessages.h"

namespace MCCommon_850 {

bool PlatformMessage(int code, std::string& text) {
    switch (code) {
    case 420001:
        text = "Warning: numerical integration did not converge within the iteration limit";
        return true;
    default:
        return false;
    }
}

} // namespace MCCommon_850

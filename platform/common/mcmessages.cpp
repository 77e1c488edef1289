#include "platform/common/mcmessages.h"

namespace MCCommon_850 {

bool PlatformMessage(int code, std::string& text) {
    switch (code) {
    case 420001:
        text = "Warning: numerical integration did not converge within the iteration limit";
        return true;
    case 420020:
        text = "Warning: the credible limits of a mean difference may be inaccurate: the numerical integration of "
               "their distribution did not reach its tolerance";
        return true;
    default:
        return false;
    }
}

} // namespace MCCommon_850

#include "platform/common/mcmessages.h"

namespace MCCommon_850 {

bool PlatformMessage(int code, std::string& text) {
    switch (code) {
    case 420001:
        text = "Warning: numerical integration did not converge within the iteration limit";
        return true;
    case 102:
        text = "Error: a factor or covariate of the model is missing from the variable list or is not a valid "
               "variable, so the model cannot be exported";
        return true;
    case 303:
        text = "Error: the PMML document could not be written (a covariance matrix of the wrong size, or a part "
               "of the model that cannot be expressed)";
        return true;
    default:
        return false;
    }
}

} // namespace MCCommon_850

#include "platform/common/mcmessages.h"

namespace MCCommon_850 {

bool PlatformMessage(int code, std::string& text) {
    switch (code) {
    case 420001:
        text = "Warning: numerical integration did not converge within the iteration limit";
        return true;
    case 420040:
        text = "Warning: records with a factor code outside the declared categories or a negative weight "
               "were left out of the table";
        return true;
    case 420041:
        text = "Warning: some pairs of categories have no proper posterior (a cell's shape plus count is not "
               "positive); their estimates are missing";
        return true;
    case 420042:
        text = "Warning: there are too many pairs of categories (more than ten million) for posterior "
               "estimates; none were computed";
        return true;
    case 420060:
        text = "Error: the settings file cannot be used";
        return true;
    case 420061:
        text = "Error: the data file cannot be used";
        return true;
    case 420062:
        text = "Error: this build of bsn has no such analysis";
        return true;
    case 420063:
        text = "Error: an output file cannot be written";
        return true;
    case 420064:
        text = "Error: the run failed unexpectedly";
        return true;
    default:
        return false;
    }
}

} // namespace MCCommon_850

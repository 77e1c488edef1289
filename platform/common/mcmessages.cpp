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
    case 420010:
        text = "Warning: the JZS Bayes factor integral, cut at g = 1e6, leaves out more than 1e-6 of the "
               "integrand's mass for some pairs; their factors differ from the factor over the whole range";
        return true;
    case 420011:
        text = "Warning: the JZS Bayes factor integral, cut at g = 1e6, leaves out more than 1% of the "
               "integrand's mass for some pairs; their factors are far from the factor over the whole range";
        return true;
    case 102:
        text = "Error: a factor or covariate of the model is missing from the variable list or is not a valid "
               "variable, so the model cannot be exported";
        return true;
    case 303:
        text = "Error: the PMML document could not be written (a covariance matrix of the wrong size, or a part "
               "of the model that cannot be expressed)";
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

#include "bsn/frame/bsncomponentdisplay.h"

#include <map>
#include <ostream>

#include "platform/display/mcdisplay.h"

namespace MCBSN_850 {

namespace {

const std::map<int, const char*>& messageTable() {
    // Where a message is made of two literals joined together, the spaces
    // inside the literals are the only separators (410042 carries two).
    static const std::map<int, const char*> table{
        {410001, "Internal error"},
        {410002, "Missing variances in the Independent algorithm when NORMAL Meandist is used"},
        {410003, "Error: No valid cases were found"},
        {410004, "Error: Not enough variables specified for Correlation. There should be at least 2"},
        {410006, "Warning: Not enough valid cases were found for some variables"},
        {410008, "Warning: There are constant variables in some variable pairs for Pearson Correlation"},
        {410009, "Warning: There is perfect linear correlation for some variable pairs for Pearson Correlation"},
        {410010, "Warning: some constant fields have been found"},
        {410011, "Error: the dependent variable for multiple regression is constant"},
        {410012, "Error: no non-redundant predictors are specified for multiple regression"},
        {410013, "Warning: the degrees of freedom in Bayesian analysis is not greater than 4"},
        {410014, "Warning: the multiple regression model has a perfect fit, R squared=1"},
        {410015, "Warning: the full model is not a superset of the original model"},
        {410016, "The analysis was abandoned following a cancellation request"},
        {410017, "Warning: The prior distribution is not supported by Bayes inference. Using Diffuse"},
        {410018, "Warning: The parameters for alternative prior for some fields are not specified"},
        {410019, "A parameter required for the selected option was not provided or is invalid"},
        {410020, "The specified prior mean vector has incorrect length"},
        {410021, "The specified matrix V has incorrect size. ID matrix used instead"},
        {410022, "Warning: Regressor values do not correspond to the predictors in the model"},
        {410023, "Warning: one or more redundant parameters were discovered"},
        {410024, "Warning: the degrees of freedom in Bayesian analysis is not greater than 2"},
        {410025, "Warning: Not enough valid cases were found for some variables"},
        {410026, "Warning: the degrees of freedom is not greater than 3 for Jeffrey2"},
        {410027, "Warning: the degrees of freedom is not greater than 5 for Diffuse"},
        {410028, "Warning: There are constant variables in some variable pairs for normal"},
        {410029, "Warning: Not enough valid cases were found for a variable pair"},
        {410030, "Warning: Not enough valid cases for Two Sample Independent analysis"},
        {410031, "Error: no factors specified for binomial analysis, or bad numbers of categories"},
        {410032, "Error in factor plot spec: not found in the factor list"},
        {410033, "Error in covariate plot spec: not found in the covariate list"},
        {410034, "Error in multiple regression or ANOVA: the dependent is not defined"},
        {410035, "Error in multiple regression: no predictors specified"},
        {410036, "Warning: Independent analysis with unknown and unequal variances can only use Diffuse"},
        {410037, "Warning: The sample size to estimate is not sufficient. No statistics(or plots) are generated"},
        {410038, "Warning: All the cases are missing. No statistics or plots are generated"},
        {410039, "Error: no covariates specified. At least one covariate is required"},
        {410040, "Error: no group variable specified for Independent"},
        {410041, "Warning: To avoid underflow or overflow, the factor value is log(factor)"},
        {410042, "Warning: The number of valid cases in Bayesian Independent  analysis is not above 5 for each group for Diffuse prior distribution"},
        {410043, "Warning: The number of testing values does not match the number of the parameters. This F test is skipped."},
        {410044, "Warning: the predictor is not found in the factor or covariate list."},
        {410045, "Warning: Bayes factor cannot be computed because the pooled standard deviation is 0."},
        {410046, "Warning: Both of the testing groups are constant. No outputs are generated for posterior analysis."},
        {410047, "Warning: At least one of the testing groups is constant. No outputs are generated for posterior analysis."},
        {410048, "F test cannot be performed because there are no L matrix rows corresponding to non-redundant parameters."},
        {410049, "Error: Log Linear model requires exactly two factors."},
        {410050, "Error: Log Linear nonparametric model requires a certain number of lambda values."},
        {410051, "Warning: the row factor in LogLinear has only one category."},
        {410052, "Warning: the column factor in LogLinear has only one category."},
        {410053, "Warning: Intrinsic priors can't be used for more than 2x2."},
        {410054, "Warning: Nonparametric priors can't be used for more than 2xK."},
        {410055, "Warning: Bayes factor cannot be estimated because at least one component for the prior is too small."},
        {410056, "Error: nonparametric priors are not compatible with Total fixed margin"},
        {410057, "Error: the number of parameters in regression or Anova model is too high."},
        {410058, "Warning: number of parameters in full model for regression is too high. No BF"},
        {410059, "Warning: A numerical problem prevented the computation of Bayes factor."},
        {410060, "Error: The number of shape parameters in Loglinear model is wrong."},
    };
    return table;
}

template <class E>
void displayEnum(const std::string& label, E v) {
    MCDisplay_850::GetOutStream() << label << BSNConst::DisplayText(v) << '\n';
}

} // namespace

void BSNComponentDisplay::ParseErrCodeToStr(int code, std::string& text) {
    const auto& table = messageTable();
    const auto it = table.find(code);
    if (it != table.end()) text = it->second;
}

void BSNComponentDisplay::DisplayC(const std::string& l, BSNConst::ModelTypes v) { displayEnum(l, v); }
void BSNComponentDisplay::DisplayC(const std::string& l, BSNConst::DistTypes v) { displayEnum(l, v); }
void BSNComponentDisplay::DisplayC(const std::string& l, BSNConst::MissScope v) { displayEnum(l, v); }
void BSNComponentDisplay::DisplayC(const std::string& l, BSNConst::MethodTypes v) { displayEnum(l, v); }
void BSNComponentDisplay::DisplayC(const std::string& l, BSNConst::CompareTypes v) { displayEnum(l, v); }
void BSNComponentDisplay::DisplayC(const std::string& l, BSNConst::AnalysTypes v) { displayEnum(l, v); }
void BSNComponentDisplay::DisplayC(const std::string& l, BSNConst::FixType v) { displayEnum(l, v); }
void BSNComponentDisplay::DisplayC(const std::string& l, BSNConst::CorrTests v) { displayEnum(l, v); }
void BSNComponentDisplay::DisplayC(const std::string& l, BSNConst::PriorTypes v) { displayEnum(l, v); }
void BSNComponentDisplay::DisplayC(const std::string& l, BSNConst::LogLinPriorType v) { displayEnum(l, v); }
void BSNComponentDisplay::DisplayC(const std::string& l, BSNConst::EstBFTypes v) { displayEnum(l, v); }
void BSNComponentDisplay::DisplayC(const std::string& l, BSNConst::VarTypes v) { displayEnum(l, v); }
void BSNComponentDisplay::DisplayC(const std::string& l, BSNConst::RegrCompute v) { displayEnum(l, v); }
void BSNComponentDisplay::DisplayC(const std::string& l, BSNConst::OutputTypes v) { displayEnum(l, v); }

void BSNComponentDisplay::DisplayStatus(const std::string& label, const MCCommon_850::MCStatus& status) {
    using namespace MCDisplay_850;
    std::string text;
    ParseErrCodeToStr(status.GetCode(), text);
    DisplayText(0, label);
    DisplayB("IsError", status.IsError());
    DisplayI("error code", status.GetCode());
    DisplayS("text", text);
    DisplayI("Discrete Datum 0", status.GetDiscreteDatum(0));
}

void BSNComponentDisplay::DisplayVStatus(const std::string& label,
                                         const std::vector<MCCommon_850::MCStatus>& statuses) {
    using namespace MCDisplay_850;
    DisplayText(0, label);
    DisplayI("size", static_cast<int>(statuses.size()));
    for (std::size_t i = 0; i < statuses.size(); ++i) {
        DisplayI("index", static_cast<int>(i));
        DisplayStatus(label, statuses[i]);
    }
}

} // namespace MCBSN_850

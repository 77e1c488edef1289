// Adapter of BSN2SampleRelatedOutputStats: one row per pair, named
// "first - second" after the difference it analyses.
#include "bsn/twosample/bsn2samplerelatedoutputstats.h"
#include "cli/results.h"
#include "cli/results_normallike.h"

namespace bsncli {

bool DescribeRelated(const MCBSN_850::BSNOutputStats& base, const DataInfo& data, ResultView& view) {
    const auto* r = dynamic_cast<const MCBSN_850::BSN2SampleRelatedOutputStats*>(&base);
    if (r == nullptr) return false;
    const std::vector<int>& first = r->GetVarIndices();
    const std::vector<int>& second = r->GetSecondVarIndices();
    std::vector<std::string> names;
    for (std::size_t i = 0; i < first.size(); ++i)
        names.push_back(data.Name(first[i]) + " - " + (i < second.size() ? data.Name(second[i]) : std::string("?")));
    DescribeNormalLike(*r, data, names, &second, "Mean difference", "Posterior of the mean difference",
                       "mean difference", view);
    return true;
}

} // namespace bsncli

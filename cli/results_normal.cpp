// Adapter of BSN1SampleNormOutputStats: the test variables are the covariates.
#include "bsn/onesample/bsn1samplenormoutputstats.h"
#include "cli/results.h"
#include "cli/results_normallike.h"

namespace bsncli {

bool DescribeNormal(const MCBSN_850::BSNOutputStats& base, const DataInfo& data, ResultView& view) {
    const auto* r = dynamic_cast<const MCBSN_850::BSN1SampleNormOutputStats*>(&base);
    if (r == nullptr) return false;
    DescribeNormalLike(*r, data, data.Names(r->GetVarIndices()), nullptr, "Mean", "Posterior of the mean", "mean", view);
    return true;
}

} // namespace bsncli

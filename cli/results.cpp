#include "cli/results.h"

namespace bsncli {

// One case per result kind that has an adapter.
bool DescribeResult(const MCBSN_850::BSNOutputStats& result, const DataInfo& data, ResultView& view) {
    switch (result.GetOutputType()) {
    case MCBSN_850::BSNConst::Output1SampleBinomial:
        return DescribeBinomial(result, data, view);
    case MCBSN_850::BSNConst::Output1SamplePoisson:
        return DescribePoisson(result, data, view);
    case MCBSN_850::BSNConst::Output1SampleNormal:
        return DescribeNormal(result, data, view);
    case MCBSN_850::BSNConst::Output2SampleRelated:
        return DescribeRelated(result, data, view);
    case MCBSN_850::BSNConst::OutputRegression:
    case MCBSN_850::BSNConst::OutputAnova:
        return DescribeRegression(result, data, view);
    case MCBSN_850::BSNConst::OutputLogLinear:
        return DescribeLogLinear(result, data, view);
    default:
        return false;
    }
}

} // namespace bsncli

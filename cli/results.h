#pragma once
// The adapters of the result classes, one per class, each in its own
// results_*.cpp. Each returns false when the object is not of its class.
#include "cli/resultview.h"

namespace bsncli {

bool DescribeBinomial(const MCBSN_850::BSNOutputStats& result, const DataInfo& data, ResultView& view);
bool DescribePoisson(const MCBSN_850::BSNOutputStats& result, const DataInfo& data, ResultView& view);
bool DescribeNormal(const MCBSN_850::BSNOutputStats& result, const DataInfo& data, ResultView& view);
bool DescribeRelated(const MCBSN_850::BSNOutputStats& result, const DataInfo& data, ResultView& view);

} // namespace bsncli

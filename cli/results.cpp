#include "cli/results.h"

namespace bsncli {

// One case per result kind that has an adapter.
bool DescribeResult(const MCBSN_850::BSNOutputStats& result, const DataInfo& data, ResultView& view) {
    switch (result.GetOutputType()) {
    default:
        (void)data;
        (void)view;
        return false;
    }
}

} // namespace bsncli

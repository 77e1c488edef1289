#pragma once
// BSNOutputStats: common base of every result object. A result is made once
// by its procedure at the end of a successful build and is owned by it.
#include <iosfwd>

#include "bsn/frame/bsnconst.h"

namespace MCBSN_850 {

class BSNOutputStats {
public:
    virtual ~BSNOutputStats() = default;
    virtual BSNConst::ModelTypes GetModelType() const = 0;
    virtual BSNConst::OutputTypes GetOutputType() const = 0;
    virtual void Display(std::ostream& os) const = 0;

protected:
    BSNOutputStats() = default;
    BSNOutputStats(const BSNOutputStats&) = default;
    BSNOutputStats& operator=(const BSNOutputStats&) = default;
};

} // namespace MCBSN_850

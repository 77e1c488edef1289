#pragma once
// Helpers shared by the one-sample binomial and Poisson tests: a listener
// that records progress counts, a cancel query that trips after a number of
// polls, Simpson's rule as an independent integrator, and a runner that
// builds a component over in-memory columns.
#include <cmath>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "bsn/frame/bsncomponent.h"
#include "platform/common/mcmv.h"
#include "platform/records/columnrecorditer.h"
#include "platform/variables/mcvarlist.h"

namespace discrete_test {

inline const double kMiss = MCCommon_850::MCMV::Missing();

class CountingListener : public MCCommon_850::ProgressListener {
public:
    void Notify(const MCCommon_850::ProgressReport& report) override {
        counts.push_back(report.DiscreteMeasure("records"));
        if (onNotify) onNotify();
    }
    std::vector<int> counts;
    std::function<void()> onNotify;
};

// Answers "cancel" from the (limit + 1)-th poll on.
class CancelAfter : public MCCommon_850::MCQueryCancel {
public:
    explicit CancelAfter(int limit) : m_limit(limit) {}
    bool IsCancel() const override { return ++m_calls > m_limit; }

private:
    int m_limit;
    mutable int m_calls = 0;
};

inline MCXML_850::MCVarList makeVarList(std::size_t n) {
    MCXML_850::MCVarList list;
    for (std::size_t i = 0; i < n; ++i) list.Add(MCXML_850::MCContVar("v" + std::to_string(i)));
    return list;
}

// Owns the component of one build over `columns` (one column per variable).
struct Build {
    Build(const MCBSN_850::BSNSettings& settings, const std::vector<std::vector<double>>& cols)
        : columns(cols), component(settings, makeVarList(cols.size())) {
        MCCommon_850::ColumnRecordIter iter(columns);
        status = component.BuildModel(iter);
    }
    template <class Output>
    const Output* As() const {
        return dynamic_cast<const Output*>(component.GetOutputStats());
    }
    int CountWarnings(int code) const {
        int n = 0;
        for (const auto& w : component.GetWarningMessages()) n += w.GetCode() == code ? 1 : 0;
        return n;
    }
    bool HasWarning(int code, int datum) const {
        for (const auto& w : component.GetWarningMessages())
            if (w.GetCode() == code && w.IsWarning() && w.GetDiscreteDatum(0) == datum) return true;
        return false;
    }

    std::vector<std::vector<double>> columns;
    MCBSN_850::BSNComponent component;
    MCCommon_850::MCStatus status;
};

// Composite Simpson's rule with n (even) intervals.
inline double simpson(const std::function<double(double)>& f, double lo, double hi, int n = 20000) {
    const double h = (hi - lo) / n;
    double sum = f(lo) + f(hi);
    for (int k = 1; k < n; ++k) sum += f(lo + k * h) * (k % 2 == 1 ? 4.0 : 2.0);
    return sum * h / 3.0;
}

inline bool isMissing(double v) { return MCCommon_850::MCMV::IsMissing(v); }

} // namespace discrete_test

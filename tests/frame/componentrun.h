#pragma once
// What the procedure tests share: a component run over in-memory columns (one
// per variable), a progress recorder and a cancel query tripping late.
#include <algorithm>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include "bsn/frame/bsncomponent.h"
#include "platform/common/mcmv.h"
#include "platform/progress/mcquerycancel.h"
#include "platform/progress/progress.h"
#include "platform/records/columnrecorditer.h"
#include "platform/variables/mcvarlist.h"

namespace bsntest {

// Scale variables v0.., the listed ones nominal.
inline MCXML_850::MCVarList ScaleVars(std::size_t n, const std::vector<int>& nominal = {}) {
    MCXML_850::MCVarList vars;
    for (std::size_t i = 0; i < n; ++i) {
        const bool nom = std::find(nominal.begin(), nominal.end(), static_cast<int>(i)) != nominal.end();
        vars.Add(MCXML_850::MCContVar("v" + std::to_string(i),
                                      nom ? MCXML_850::MCVarKind::Nominal : MCXML_850::MCVarKind::Scale));
    }
    return vars;
}

// The component of one build; keeps the columns alive while results are read.
struct ComponentRun {
    ComponentRun(const MCBSN_850::BSNSettings& settings, std::vector<std::vector<double>> cols,
                 const MCXML_850::MCVarList& vars)
        : columns(std::move(cols)), iter(columns), component(settings, vars) {
        status = component.BuildModel(iter);
    }
    ComponentRun(const MCBSN_850::BSNSettings& settings, std::vector<std::vector<double>> cols)
        : ComponentRun(settings, cols, ScaleVars(cols.size())) {}

    template <class Out>
    const Out* As() const {
        return dynamic_cast<const Out*>(component.GetOutputStats());
    }
    template <class Out>  // the result object, which must be there
    const Out& Result() const {
        const Out* o = As<Out>();
        if (o == nullptr) throw std::runtime_error("no result object");
        return *o;
    }
    std::vector<int> WarningCodes() const {
        std::vector<int> codes;
        for (const auto& w : component.GetWarningMessages()) codes.push_back(w.GetCode());
        return codes;
    }
    int Count(int code) const { return static_cast<int>(std::ranges::count(WarningCodes(), code)); }
    const MCCommon_850::MCStatus* Warning(int code) const {
        for (const auto& w : component.GetWarningMessages())
            if (w.GetCode() == code) return &w;
        return nullptr;
    }
    bool HasWarning(int code, int datum) const {
        for (const auto& w : component.GetWarningMessages())
            if (w.GetCode() == code && w.IsWarning() && w.GetDiscreteDatum(0) == datum) return true;
        return false;
    }

    std::vector<std::vector<double>> columns;
    MCCommon_850::ColumnRecordIter iter;
    MCBSN_850::BSNComponent component;
    MCCommon_850::MCStatus status;
};

// Records the "records" count of every report, then runs onNotify.
struct RecordCounts : MCCommon_850::ProgressListener {
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

} // namespace bsntest

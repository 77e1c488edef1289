// A host program that embeds bsn: it keeps its data in memory, describes it
// in a variable list, builds a one-sample normal analysis and a related-
// samples analysis in code, and prints their Bayes factors and posteriors.
#include <chrono>
#include <iomanip>
#include <iostream>
#include <string>
#include <vector>

#include "bsn/frame/bsncomponent.h"
#include "bsn/frame/bsncomponentdisplay.h"
#include "bsn/frame/bsnsettings.h"
#include "bsn/onesample/bsn1samplenormoutputstats.h"
#include "bsn/twosample/bsn2samplerelatedoutputstats.h"

using namespace MCBSN_850;
using MCCommon_850::MCMV;

const double NA = MCMV::Missing();
// The same rows as data.csv: reaction time, blood pressure before and after.
const std::vector<std::vector<double>> kRows = {
    {262.4, 152, 144}, {248.9, 147, 141}, {271.3, 160, 151}, {255.0, 138, 139},
    {266.7, 155, 146}, {NA, 149, 143},    {259.8, 163, 150}, {244.1, 141, 137},
    {275.6, 158, NA},  {263.2, 146, 140}, {252.7, 151, 147}, {268.9, 144, 136}};

// The host's own record source: the library rewinds it for every data pass.
class RowIter : public MCCommon_850::MultiPassRecordIter {
public:
    explicit RowIter(const std::vector<std::vector<double>>& rows) : m_rows(rows) {}
    void Reset() override { m_next = 0; }
    bool Advance() override {
        if (m_next == m_rows.size()) return false;
        const std::vector<double>& row = m_rows[m_next++];
        m_record = MCCommon_850::Record(row.data(), row.size());
        return true;
    }
    const MCCommon_850::Record* GetRecord() const override { return &m_record; }

private:
    const std::vector<std::vector<double>>& m_rows;
    std::size_t m_next = 0;
    MCCommon_850::Record m_record;
};

// Called on the thread that runs BuildModel; the count restarts every pass.
class PercentProgress : public MCCommon_850::ProgressListener {
public:
    void Notify(const MCCommon_850::ProgressReport& report) override {
        const int n = report.DiscreteMeasure("records");
        if (n >= 0) std::cerr << "  progress: " << 100 * n / static_cast<int>(kRows.size()) << "%\n";
    }
};

// Stops an analysis that runs longer than the host is willing to wait.
class TimeLimit : public MCCommon_850::MCQueryCancel {
public:
    explicit TimeLimit(std::chrono::seconds limit) : m_end(std::chrono::steady_clock::now() + limit) {}
    bool IsCancel() const override { return std::chrono::steady_clock::now() > m_end; }

private:
    std::chrono::steady_clock::time_point m_end;
};

std::string message(const MCCommon_850::MCStatus& s) {
    std::string text = s.GetCode() == 1 ? "cancelled" : "status code " + std::to_string(s.GetCode());
    BSNComponentDisplay::ParseErrCodeToStr(s.GetCode(), text);
    return text;
}

// Runs the analysis and prints its status, warnings and result table.
void run(const char* title, BSNSettings settings, const std::vector<std::string>& names) {
    PercentProgress progress;
    TimeLimit limit(std::chrono::seconds(60));
    settings.SetProgressListener(&progress);  // both borrowed: they outlive the component
    settings.SetProgressFrequency(4);
    settings.SetCancelPointer(&limit);
    settings.SetNCases(static_cast<int>(kRows.size()));
    std::cout << title << '\n';
    if (MCCommon_850::MCStatus s = settings.IsValidSettings(); s.IsError()) {
        std::cout << "  settings refused: " << message(s) << '\n';
        return;
    }
    MCXML_850::MCVarList vars;
    for (const char* name : {"reaction_ms", "sbp_before", "sbp_after"}) vars.Add(MCXML_850::MCContVar(name));

    BSNComponent component(settings, vars);
    RowIter rows(kRows);
    component.BuildModel(rows);
    for (const MCCommon_850::MCStatus& w : component.GetWarningMessages()) std::cout << "  warning: " << message(w) << '\n';
    if (!component.IsModelBuilt()) {
        std::cout << "  error: " << message(component.GetStatus()) << '\n';
        return;
    }
    // Both results share the normal-mean getters; the pointer lives as long as the component.
    const auto& r = dynamic_cast<const BSNNormalMeanOutputStats&>(*component.GetOutputStats());
    std::cout << "  " << std::left << std::setw(24) << "variable" << std::right;
    for (const char* h : {"BF01", "log BF01", "mode", "mean", "variance", "lower95", "upper95"})
        std::cout << std::setw(12) << h;
    std::cout << '\n' << std::setprecision(6);
    for (std::size_t i = 0; i < names.size(); ++i) {
        std::cout << "  " << std::left << std::setw(24) << names[i] << std::right;
        for (const auto* v : {&r.GetBayesFactors(), &r.GetLogBayesFactors(), &r.GetModeValues(),
                              &r.GetPostMeanValues(), &r.GetVarianceValues(), &r.GetLowerLimits(),
                              &r.GetUpperLimits()}) {
            if (MCMV::IsMissing((*v)[i])) std::cout << std::setw(12) << ".";
            else std::cout << std::setw(12) << (*v)[i];
        }
        std::cout << '\n';
    }
}

int main() {
    BSNSettings normal;
    normal.SetModelType(BSNConst::OneSample, true);
    normal.SetTestDistType(BSNConst::Normal);
    normal.SetCovariates({0});  // reaction_ms, tested against 250
    normal.SetNullValues({250.0});
    normal.SetAnalysType(BSNConst::Both);
    normal.SetEstBFType(BSNConst::JZS);
    normal.SetMeanDistType(BSNConst::Diffuse);
    normal.SetPriorDistType(BSNConst::Diffuse);
    run("One-sample normal mean", normal, {"reaction_ms"});

    BSNSettings related = normal;
    related.SetModelType(BSNConst::Related, true);
    related.SetCovariates({1});  // sbp_before - sbp_after, tested against 0
    related.Set2ndRelatedList({2});
    related.SetNullValues({0.0});
    run("Related samples", related, {"sbp_before - sbp_after"});
    return 0;
}

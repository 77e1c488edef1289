#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "bsn/frame/bsnalgorithm.h"
#include "bsn/frame/bsncomponent.h"
#include "bsn/frame/bsncomponentdisplay.h"
#include "tests/frame/componentrun.h"

using namespace MCBSN_850;
using MCCommon_850::MCMV;
using MCCommon_850::MCStatus;

namespace {

// A procedure that sums the weights and weighted values of variable 0 in one
// pass and then runs a scripted list of stage statuses: enough to exercise
// the frame's bookkeeping without any statistics.
struct ScriptedProcedure : BSNAlgorithm {
    ScriptedProcedure(const BSNSettings& s, std::vector<MCStatus> stages, FinalReport rule = FinalReport::Always)
        : BSNAlgorithm(s, MCXML_850::MCVarList()), stages(std::move(stages)), rule(rule) {}

    MCStatus BuildModel(MCCommon_850::MultiPassRecordIter& iter) override {
        const auto add = [this](const MCCommon_850::Record& r, double w) {
            sumWeights += w;
            sumValues += w * r.GetValue(0);
            ++used;
        };
        if (!TakeStageStatus(RunDataPass(iter, add, rule))) return FinishBuild();
        for (const MCStatus& stage : stages) {
            ++stagesRun;
            if (!TakeStageStatus(stage)) break;
        }
        return FinishBuild();
    }
    void Display(std::ostream&) const override {}

    std::vector<MCStatus> stages;
    FinalReport rule;
    double sumWeights = 0, sumValues = 0;
    int used = 0, stagesRun = 0;
};

// Yields a null record at one row (0-based), as a source with gaps may.
struct GappyIter : MCCommon_850::ColumnRecordIter {
    GappyIter(const std::vector<std::vector<double>>& cols, std::size_t gap) : ColumnRecordIter(cols), gap(gap) {}
    void Reset() override { ColumnRecordIter::Reset(), row = 0; }
    bool Advance() override { return ++row, ColumnRecordIter::Advance(); }
    const MCCommon_850::Record* GetRecord() const override {
        return row - 1 == gap ? nullptr : ColumnRecordIter::GetRecord();
    }
    std::size_t gap, row = 0;
};

} // namespace

TEST(Frame, FrequencyWeightsRoundHalfUp) {
    // Half up; below a half, negative and missing are zero; beyond the int
    // range the weight stays exact.
    const std::pair<double, double> cases[] = {{2.4, 2}, {2.5, 3}, {0.5, 1}, {0.49, 0}, {-3, 0},
                                               {MCMV::Missing(), 0}, {5e9 + 0.2, 5e9}};
    for (const auto& [w, rounded] : cases) EXPECT_EQ(BSNAlgorithm::RoundFrequencyWeight(w), rounded) << w;

    // One pass: weights 0 are counted in the progress but not used; a null
    // record (the last) is neither.
    bsntest::RecordCounts listener;
    BSNSettings s;
    s.SetProgressListener(&listener);
    s.SetProgressFrequency(3);
    s.SetFrequencyWeightVar(1);
    std::vector<std::vector<double>> cols{{1, 2, 3, 4, 5, 6, 7}, {2.4, 2.5, 0.49, -3, MCMV::Missing(), 1, 1}};
    GappyIter iter(cols, 6);
    ScriptedProcedure p(s, {});
    EXPECT_TRUE(p.BuildModel(iter).IsOK());
    EXPECT_EQ(p.used, 3);
    EXPECT_EQ(p.sumWeights, 2 + 3 + 1);
    EXPECT_EQ(p.sumValues, 1 * 2 + 2 * 3 + 6 * 1);
    EXPECT_EQ(listener.counts, (std::vector<int>{3, 6, 6}));
}

TEST(Frame, WarningsCollectedInOrderAndErrorEndsBuild) {
    std::vector<std::vector<double>> cols{{1, 2}};
    MCCommon_850::ColumnRecordIter iter(cols);
    MCStatus w1(410041, true), w2(410037, true), err(410019, false), w3(410018, true);
    w2.SetDiscreteDatum(0, 4);
    ScriptedProcedure p(BSNSettings(), {w1, w2, err, w3});
    EXPECT_EQ(p.BuildModel(iter).GetCode(), 410019);
    EXPECT_EQ(p.GetStatus().GetCode(), 410019);
    EXPECT_FALSE(p.IsModelBuilt());
    EXPECT_EQ(p.stagesRun, 3);  // the stage after the error never ran
    ASSERT_EQ(p.GetWarningMessages().Size(), 2u);
    EXPECT_EQ(p.GetWarningMessages().Get(0).GetCode(), 410041);
    EXPECT_EQ(p.GetWarningMessages().Get(1).GetCode(), 410037);
    EXPECT_EQ(p.GetWarningMessages().Get(1).GetDiscreteDatum(0), 4);

    // Warnings alone leave the status clear and the model built.
    ScriptedProcedure ok(BSNSettings(), {w1, w3});
    EXPECT_TRUE(ok.BuildModel(iter).IsOK() && ok.GetStatus().IsOK());
    EXPECT_TRUE(ok.IsModelBuilt());
    EXPECT_EQ(ok.GetWarningMessages().Size(), 2u);
}

TEST(Frame, ProgressReportsEveryFrequencyAndAtTheEnd) {
    using Rule = BSNAlgorithm::FinalReport;
    struct Case {
        int nRecords;
        Rule rule;
        std::vector<int> expected;
    };
    // The final report always comes under Always, even when the last record
    // was just reported; under IfPending only when something is new.
    for (const Case& c : {Case{7, Rule::Always, {3, 6, 7}}, Case{6, Rule::Always, {3, 6, 6}},
                          Case{6, Rule::IfPending, {3, 6}}, Case{7, Rule::IfPending, {3, 6, 7}}}) {
        bsntest::RecordCounts listener;
        BSNSettings s;
        s.SetProgressListener(&listener);
        s.SetProgressFrequency(3);
        std::vector<std::vector<double>> cols{std::vector<double>(c.nRecords, 1.0)};
        MCCommon_850::ColumnRecordIter iter(cols);
        ScriptedProcedure p(s, {}, c.rule);
        p.BuildModel(iter);
        EXPECT_EQ(listener.counts, c.expected) << c.nRecords;
    }
}

TEST(Frame, CancellationInsideAPassGivesCodeOne) {
    bsntest::CancelAfter cancel(3);
    BSNSettings s;
    s.SetCancelPointer(&cancel);
    std::vector<std::vector<double>> cols{{1, 2, 3, 4, 5, 6}};
    MCCommon_850::ColumnRecordIter iter(cols);
    ScriptedProcedure p(s, {MCStatus(410041, true)});
    const MCStatus st = p.BuildModel(iter);
    EXPECT_TRUE(st.IsError() && st.GetCode() == 1) << st.GetCode();
    EXPECT_EQ(p.used, 3);
    EXPECT_EQ(p.stagesRun, 0);
    EXPECT_FALSE(p.IsModelBuilt());

    // Set later through SetCancelPtr, from "another thread" (an atomic flag).
    MCCommon_850::MCAtomicCancel flag;
    flag.Cancel();
    ScriptedProcedure q(BSNSettings(), {});
    q.SetCancelPtr(&flag);
    EXPECT_EQ(q.BuildModel(iter).GetCode(), 1);
    EXPECT_EQ(q.used, 0);
}

TEST(Frame, ComponentWithoutProcedureIsInert) {
    BSNSettings s;
    s.SetModelType(static_cast<BSNConst::ModelTypes>(9), false);
    BSNComponent c(s, MCXML_850::MCVarList());
    EXPECT_FALSE(c.HasProcedure());
    std::vector<std::vector<double>> cols{{1}};
    MCCommon_850::ColumnRecordIter iter(cols);
    EXPECT_EQ(c.BuildModel(iter).GetCode(), 410001);
    EXPECT_FALSE(c.IsModelBuilt());
    EXPECT_EQ(c.GetOutputStats(), nullptr);
    EXPECT_TRUE(c.GetWarningMessages().IsEmpty());
    std::ostringstream os;
    c.Display(os);
    EXPECT_EQ(os.str(), "");
}

TEST(MessageTable, JoinedLiteralsAndGaps) {
    const std::string same = "unchanged";
    std::string t6;
    BSNComponentDisplay::ParseErrCodeToStr(410006, t6);
    const std::pair<int, std::string> cases[] = {
        {410005, same}, {410061, same}, {1, same},  // unassigned codes leave the text alone
        {410055, "Warning: Bayes factor cannot be estimated because at least one component for the prior is too small."},
        {410042, "Warning: The number of valid cases in Bayesian Independent  analysis is not above 5 for each group "
                 "for Diffuse prior distribution"},
        {410025, t6},
        {410001, "Internal error"},
        {410060, "Error: The number of shape parameters in Loglinear model is wrong."},
    };
    for (const auto& [code, expected] : cases) {
        std::string text = same;
        BSNComponentDisplay::ParseErrCodeToStr(code, text);
        EXPECT_EQ(text, expected) << code;
    }
}

TEST(MCStatus, KindsAndSlotsOutOfRange) {
    MCStatus err(410003, false), warn(410041, true);
    EXPECT_TRUE(MCStatus().IsOK() && !MCStatus().IsError() && !MCStatus().IsWarning());
    EXPECT_TRUE(err.IsError() && !err.IsWarning() && warn.IsWarning() && !warn.IsError());
    warn.SetDiscreteDatum(99, 3);  // out of range: ignored, and no datum there
    EXPECT_FALSE(warn.HasDiscreteDatum(99));
    EXPECT_EQ(warn.GetDiscreteDatum(99), -1);
}

// PMML export of regression and ANOVA models: every document checked
// against the schema's structure, read back and evaluated by the PMML rules
// (it must predict what Score predicts), its content against R, and the
// exporter's statuses.
#include <fmt/format.h>

#include <cstdio>
#include <sstream>

#include "bsn/regression/bsnpmmlexporter.h"
#include "platform/pmml/mcpmmlexporter.h"
#include "tests/pmml/pmmlevaluator.h"
#include "tests/pmml/pmmlschemacheck.h"
#include "tests/regression/scoringtestsupport.h"

using namespace scoringtest;
using MCBSN_850::BSNPMMLExporter;
using MCCommon_850::MCStatus;

namespace {

const std::vector<std::string> kGLabels = {"low", "mid", "high"};
const std::vector<std::string> kHLabels = {"10", "20", "30", "40"};

// The variables of regr_small.csv by name, the factors coded with labels
// (the data values the codes stand for).
MCXML_850::MCVarList namedVars() {
    MCXML_850::MCVarList vars;
    for (const char* name : {"y", "x1", "x2", "g", "h", "freq", "rw"}) {
        const bool factor = std::string(name) == "g" || std::string(name) == "h";
        vars.Add(MCXML_850::MCContVar(name, factor ? MCXML_850::MCVarKind::Nominal : MCXML_850::MCVarKind::Scale));
    }
    vars.Get(kG).SetValueLabels(kGLabels);
    vars.Get(kH).SetValueLabels(kHLabels);
    return vars;
}

struct Exported {
    MCStatus status;
    std::string xml;
};

// Exports the model; a document written must pass the schema check.
Exported exportModel(const BSNMultiRegOutputStats& r, const MCXML_850::MCVarList& vars, bool covariance) {
    MCMath_850::MCRegSettings regSettings;
    r.FillRegSettings(regSettings);
    MCMath_850::MCSymMatrix cov;
    const bool haveCov = covariance && r.GetPosteriorCovariance(cov);
    EXPECT_EQ(haveCov, covariance);
    BSNPMMLExporter exporter(r.GetSettings(), regSettings, vars);
    exporter.SetTotalWeight(r.GetNCases());
    std::ostringstream os;
    Exported e;
    e.status = exporter.ExportPMML(os, haveCov ? &cov : nullptr);
    e.xml = os.str();
    if (e.status.IsOK()) {
        const auto problems = pmmltest::CheckAgainstSchema(e.xml);
        EXPECT_TRUE(problems.empty()) << pmmltest::JoinProblems(problems);
    }
    return e;
}

std::string text(double v) { return MCMV::IsMissing(v) ? std::string() : fmt::format("{:.17g}", v); }

// A record of regr_small.csv's layout as the PMML consumer sees it.
std::map<std::string, std::string> fields(const std::vector<double>& v) {
    const auto label = [&](int column, const std::vector<std::string>& labels) {
        const double code = v[static_cast<std::size_t>(column)];
        return MCMV::IsMissing(code) ? std::string() : labels.at(static_cast<std::size_t>(code));
    };
    return {{"x1", text(v[kX1])}, {"x2", text(v[kX2])}, {"g", label(kG, kGLabels)}, {"h", label(kH, kHLabels)}};
}

BSNSettings conjugateA() {
    BSNSettings s = modelSettings('A');
    s.SetPriorType(BC::Conjugate);
    s.SetPriorShape(3);
    s.SetPriorScale(2);
    s.SetPriorMeans({1, 0.5, -0.5, 123.0, 0.7, -0.2});
    return s;
}

} // namespace

TEST(PmmlExport, DocumentsReadBackPredictWhatScorePredicts) {
    BSNSettings bfOnly = modelSettings('A');
    bfOnly.SetAnalysType(BC::BayesFactor);
    const struct {
        const char* name;
        BSNSettings settings;
        bool covariance;
    } cases[] = {
        {"A reference (dense rows)", modelSettings('A'), true},
        {"B reference (sparse rows)", modelSettings('B'), true},
        {"C ANOVA", modelSettings('C'), true},
        {"A conjugate", conjugateA(), true},
        {"A without posterior", bfOnly, false},
    };
    const auto training = readColumns("regr_small.csv");
    const auto fresh = readColumns("scoring_new.csv");
    for (const auto& c : cases) {
        RegrRun run(c.settings, training, namedVars());
        ASSERT_TRUE(run.status.IsOK()) << c.name;
        const auto& r = run.result();
        const Exported e = exportModel(r, namedVars(), c.covariance);
        ASSERT_TRUE(e.status.IsOK()) << c.name << " " << e.status.GetCode();
        const pmmltest::GeneralRegressionEvaluator pmml(e.xml);

        // One parameter per design parameter; a redundant one has beta 0
        // and df 0, the others df 1.
        const auto& redundant = r.GetRedundancy();
        ASSERT_EQ(pmml.parameters.size(), redundant.size()) << c.name;
        for (std::size_t i = 0; i < redundant.size(); ++i) {
            const std::string p = "p" + std::to_string(i);
            EXPECT_EQ(pmml.parameters[i], p);
            EXPECT_EQ(pmml.df.at(p), redundant[i] ? 0 : 1) << c.name << " " << p;
            const double expected = redundant[i] ? 0.0 : r.GetScoringCoefficients()[i];
            EXPECT_EQ(pmml.beta.at(p), expected) << c.name << " " << p;
        }
        EXPECT_EQ(pmml.covariance.empty(), !c.covariance) << c.name;

        for (const auto* table : {&training, &fresh})
            for (std::size_t i = 0; i < (*table)[0].size(); ++i) {
                const auto values = row(*table, i);
                const auto predicted = pmml.Predict(fields(values));
                ASSERT_TRUE(predicted.has_value());
                const double expected = score(r, values).GetMean();
                EXPECT_NEAR(*predicted, expected, 1e-12 * std::max(1.0, std::fabs(expected)))
                    << c.name << " record " << i;
            }
    }
}

TEST(PmmlExport, DocumentDescribesTheModelAndItsData) {
    const auto& ref = scoringReference();
    for (const char model : {'A', 'C'}) {
        RegrRun run(modelSettings(model), readColumns("regr_small.csv"), namedVars());
        ASSERT_TRUE(run.status.IsOK());
        const Exported e = exportModel(run.result(), namedVars(), true);
        ASSERT_TRUE(e.status.IsOK());
        tinyxml2::XMLDocument doc;
        ASSERT_EQ(doc.Parse(e.xml.c_str()), tinyxml2::XML_SUCCESS);
        const auto* pmml = doc.RootElement();
        EXPECT_STREQ(pmml->Attribute("xmlns"), "http://www.dmg.org/PMML-4_4");
        EXPECT_STREQ(pmml->Attribute("version"), "4.4");

        // Data dictionary: the dependent and covariates continuous, the
        // factor categorical with its data values in code order, the weights.
        std::map<std::string, std::pair<std::string, std::vector<std::string>>> dict;
        for (const auto* f = pmml->FirstChildElement("DataDictionary")->FirstChildElement("DataField"); f;
             f = f->NextSiblingElement("DataField")) {
            std::vector<std::string> values;
            for (const auto* v = f->FirstChildElement("Value"); v; v = v->NextSiblingElement("Value"))
                values.push_back(v->Attribute("value"));
            dict[f->Attribute("name")] = {std::string(f->Attribute("optype")) + "/" + f->Attribute("dataType"), values};
        }
        std::map<std::string, std::pair<std::string, std::vector<std::string>>> expected = {
            {"y", {"continuous/double", {}}},
            {"g", {"categorical/string", kGLabels}},
            {"freq", {"continuous/double", {}}},
            {"rw", {"continuous/double", {}}}};
        if (model == 'A') {
            expected["x1"] = {"continuous/double", {}};
            expected["x2"] = {"continuous/double", {}};
        }
        EXPECT_EQ(dict, expected) << model;
        EXPECT_EQ(pmml->FirstChildElement("DataDictionary")->IntAttribute("numberOfFields"),
                  static_cast<int>(expected.size()));

        const auto* grm = pmml->FirstChildElement("GeneralRegressionModel");
        EXPECT_STREQ(grm->Attribute("modelType"), "generalLinear");
        EXPECT_STREQ(grm->Attribute("functionName"), "regression");
        EXPECT_STREQ(grm->Attribute("algorithmName"), model == 'C' ? "BayesianAnova" : "BayesianMultipleRegression");
        const auto* ext = grm->FirstChildElement();
        EXPECT_STREQ(ext->Name(), "Extension");
        EXPECT_STREQ(ext->Attribute("name"), "modelID");
        EXPECT_STREQ(ext->Attribute("value"), "0");

        std::map<std::string, std::string> usage;
        for (const auto* f = grm->FirstChildElement("MiningSchema")->FirstChildElement("MiningField"); f;
             f = f->NextSiblingElement("MiningField"))
            usage[f->Attribute("name")] = f->Attribute("usageType");
        std::map<std::string, std::string> expectedUsage = {
            {"y", "target"}, {"g", "active"}, {"freq", "frequencyWeight"}, {"rw", "analysisWeight"}};
        if (model == 'A') expectedUsage["x1"] = expectedUsage["x2"] = "active";
        EXPECT_EQ(usage, expectedUsage);

        const auto* quality = grm->FirstChildElement("ModelExplanation")->FirstChildElement("PredictiveModelQuality");
        EXPECT_STREQ(quality->Attribute("targetField"), "y");
        EXPECT_EQ(quality->DoubleAttribute("numOfRecords"), readReference("regr_reference.csv").at("N")[0]);

        // Factor categories link to their parameters by data value.
        const pmmltest::GeneralRegressionEvaluator eval(e.xml);
        const int first = model == 'C' ? 0 : 1;
        for (std::size_t k = 0; k < kGLabels.size(); ++k) {
            const auto& cell = eval.cells[k];
            EXPECT_EQ(cell.predictor, "g");
            EXPECT_EQ(cell.value, kGLabels[k]);
            EXPECT_EQ(cell.parameter, "p" + std::to_string(first + static_cast<int>(k)));
        }
        EXPECT_EQ(eval.factors, std::set<std::string>{"g"});
        EXPECT_EQ(eval.covariates, model == 'A' ? (std::set<std::string>{"x1", "x2"}) : std::set<std::string>{});

        // The posterior covariance is lm's vcov x nu / (nu - 2), its lower
        // triangle over the parameters that are not redundant.
        const std::vector<int> keep = model == 'A' ? std::vector<int>{0, 1, 2, 4, 5} : std::vector<int>{0, 1, 2};
        const auto& cov = ref.at(std::string(1, model) + "_cov");
        std::size_t at = 0;
        for (std::size_t i = 0; i < keep.size(); ++i)
            for (std::size_t j = 0; j <= i; ++j, ++at) {
                const auto key = std::make_pair("p" + std::to_string(keep[i]), "p" + std::to_string(keep[j]));
                ASSERT_EQ(eval.covariance.count(key), 1u) << key.first << "," << key.second;
                EXPECT_NEAR(eval.covariance.at(key), cov[at], 1e-9 * std::max(1e-3, std::fabs(cov[at])))
                    << model << " " << key.first << "," << key.second;
            }
        EXPECT_EQ(eval.covariance.size(), at) << "cells of a redundant parameter were written";
    }
}

TEST(PmmlExport, StatusesForMissingVariablesAndBadInputs) {
    // A model described directly: y ~ g + x1 + x2 over the named variables.
    const auto design = [](std::vector<int> factors, std::vector<int> covariates, int dependent) {
        MCMath_850::MCFastDesignMatrix d(factors, {3}, covariates, true);
        d.SetDepVar(dependent);
        return d;
    };
    const std::vector<double> b = {1.0, 0.5, -0.5, 0.0, 2.0, -1.0};
    const std::vector<bool> redundant = {false, false, false, true, false, false};
    const auto vars = namedVars();
    auto scaleFactor = vars;
    scaleFactor.Get(kG) = MCXML_850::MCContVar("", MCXML_850::MCVarKind::Scale);
    auto reversed = vars;
    reversed.Get(kG) = MCXML_850::MCContVar("g", MCXML_850::MCVarKind::Scale, 2.0, 0.0);
    auto scaleOk = vars;
    scaleOk.Get(kG) = MCXML_850::MCContVar("g", MCXML_850::MCVarKind::Scale, 0.0, 2.0);
    auto unnamedNominal = vars;
    unnamedNominal.Get(kG) = MCXML_850::MCContVar("", MCXML_850::MCVarKind::Nominal);
    MCMath_850::MCSymMatrix size5(5), size6(6);
    for (int i = 0; i < 6; ++i) size6.Set(i, i, 1.0);
    std::vector<double> missingBeta = b;
    missingBeta[4] = kMiss;

    const struct {
        const char* name;
        MCMath_850::MCFastDesignMatrix design;
        const MCXML_850::MCVarList* vars;
        const MCMath_850::MCSymMatrix* covariance;
        std::vector<double> coefficients;
        bool checkFirst;
        int code, datum0, datum1;
    } cases[] = {
        {"complete", design({kG}, {kX1, kX2}, kY), &vars, &size6, b, false, 0, -1, -1},
        {"factor not in the list", design({9}, {kX1, kX2}, kY), &vars, nullptr, b, false, 102, 9, 0},
        {"covariate not in the list", design({kG}, {kX1, 8}, kY), &vars, nullptr, b, false, 102, 8, 1},
        {"factor not in the list, checked first", design({9}, {kX1, kX2}, kY), &vars, nullptr, b, true, 102, 9, 0},
        {"numeric factor without a name", design({kG}, {kX1, kX2}, kY), &scaleFactor, nullptr, b, false, 102, kG, 0},
        {"numeric factor with a reversed range", design({kG}, {kX1, kX2}, kY), &reversed, nullptr, b, false, 102, kG,
         0},
        {"numeric factor that is valid", design({kG}, {kX1, kX2}, kY), &scaleOk, nullptr, b, false, 0, -1, -1},
        {"coded factor needs no own check", design({kG}, {kX1, kX2}, kY), &unnamedNominal, nullptr, b, false, 0, -1,
         -1},
        {"covariance of the wrong size", design({kG}, {kX1, kX2}, kY), &vars, &size5, b, false, 303, 6, 5},
        {"a coefficient missing", design({kG}, {kX1, kX2}, kY), &vars, nullptr, missingBeta, false, 303, -1, -1},
        {"dependent not in the list", design({kG}, {kX1, kX2}, 12), &vars, nullptr, b, false, 303, -1, -1},
    };
    for (const auto& c : cases) {
        MCMath_850::MCRegSettings rs;
        rs.SetDesign(c.design);
        rs.SetCoefficients(c.coefficients);
        rs.SetRedundancy(redundant);
        BSNSettings settings = modelSettings('A');
        BSNPMMLExporter exporter(settings, rs, *c.vars);
        exporter.SetTotalWeight(40);
        if (c.checkFirst) {
            EXPECT_EQ(exporter.CheckConsistency().GetCode(), c.code) << c.name;
        }
        std::ostringstream os;
        const MCStatus s = exporter.ExportPMML(os, c.covariance);
        EXPECT_EQ(s.GetCode(), c.code) << c.name;
        EXPECT_EQ(exporter.GetStatus(), s) << c.name;
        if (c.code == 0) {
            std::ostringstream dump;
            exporter.Display(dump);
            EXPECT_NE(dump.str().find("Active covariates: [1, 2]"), std::string::npos) << dump.str();
            const auto problems = pmmltest::CheckAgainstSchema(os.str());
            EXPECT_TRUE(problems.empty()) << c.name << "\n" << pmmltest::JoinProblems(problems);
            continue;
        }
        EXPECT_TRUE(s.IsError()) << c.name;
        EXPECT_EQ(os.str(), "") << c.name << ": a failed export wrote something";
        EXPECT_EQ(s.GetDiscreteDatum(0), c.datum0) << c.name;
        EXPECT_EQ(s.GetDiscreteDatum(1), c.datum1) << c.name;
    }
}

TEST(PmmlExport, SchemaCheckCatchesBrokenDocuments) {
    // The checker itself must fail documents that break the schema.
    RegrRun run(modelSettings('A'), readColumns("regr_small.csv"), namedVars());
    ASSERT_TRUE(run.status.IsOK());
    const std::string good = exportModel(run.result(), namedVars(), false).xml;
    ASSERT_TRUE(pmmltest::CheckAgainstSchema(good).empty());
    const auto broken = [&](const std::string& from, const std::string& to) {
        std::string s = good;
        const auto at = s.find(from);
        EXPECT_NE(at, std::string::npos) << from;
        if (at != std::string::npos) s.replace(at, from.size(), to);
        return pmmltest::CheckAgainstSchema(s);
    };
    EXPECT_FALSE(broken("modelType=\"generalLinear\"", "").empty()) << "required attribute";
    EXPECT_FALSE(broken("modelType=\"generalLinear\"", "modelType=\"linear\"").empty()) << "enumeration";
    EXPECT_FALSE(broken("df=\"1\"", "df=\"1.5\"").empty()) << "integer";
    EXPECT_FALSE(broken("beta=\"", "beta=\"x").empty()) << "real number";
    EXPECT_FALSE(broken("<PMML ", "<PMML foo=\"1\" ").empty()) << "undeclared attribute";
    EXPECT_FALSE(broken("PMML-4_4", "PMML-4_3").empty()) << "namespace";
    EXPECT_FALSE(broken("<ModelExplanation>", "<ModelExplanation>text").empty()) << "text";
    // Element order: the ModelExplanation moved after the ParamMatrix.
    std::string moved = good;
    const auto a = moved.find("<ModelExplanation>"), z = moved.find("</ModelExplanation>") + 19;
    const std::string explanation = moved.substr(a, z - a);
    moved.erase(a, z - a);
    moved.insert(moved.find("</GeneralRegressionModel>"), explanation);
    EXPECT_FALSE(pmmltest::CheckAgainstSchema(moved).empty()) << "order";
    // A missing required element, and one too many.
    std::string noMatrix = good;
    const auto p = noMatrix.find("<PPMatrix>"), q = noMatrix.find("</PPMatrix>") + 11;
    noMatrix.erase(p, q - p);
    EXPECT_FALSE(pmmltest::CheckAgainstSchema(noMatrix).empty()) << "missing PPMatrix";
    EXPECT_FALSE(broken("</DataDictionary>", "</DataDictionary><DataDictionary><DataField name=\"a\" optype="
                                             "\"continuous\" dataType=\"double\"/></DataDictionary>")
                     .empty())
        << "two data dictionaries";
    EXPECT_FALSE(pmmltest::CheckAgainstSchema("<PMML").empty()) << "not well-formed";
}

TEST(PmmlExport, CategoryValueTypesAndNumberTexts) {
    const auto typeOf = [](std::vector<std::string> labels, int n) {
        MCXML_850::MCContVar v("f", MCXML_850::MCVarKind::Nominal);
        v.SetValueLabels(std::move(labels));
        return std::string(MCCommon_850::MCPMMLExporter::CategoryDataType(v, n));
    };
    EXPECT_EQ(typeOf({"1", "2", "-10"}, 3), "integer");
    EXPECT_EQ(typeOf({"1", "2.5"}, 2), "double");
    EXPECT_EQ(typeOf({"1", "1e3"}, 2), "double");
    EXPECT_EQ(typeOf({"1", "a"}, 2), "string");
    EXPECT_EQ(typeOf({"1", " 2"}, 2), "string");
    EXPECT_EQ(typeOf({}, 3), "integer");  // codes stand for themselves
    EXPECT_EQ(typeOf({"a"}, 2), "string");
    MCXML_850::MCContVar partial("f", MCXML_850::MCVarKind::Nominal);
    partial.SetValueLabels({"x"});
    EXPECT_EQ(MCCommon_850::MCPMMLExporter::CategoryValue(partial, 0), "x");
    EXPECT_EQ(MCCommon_850::MCPMMLExporter::CategoryValue(partial, 1), "1");
    for (const double v : {0.1, -2.5e-300, 1.0 / 3.0, 123456789012345678.0, 0.0, 5.0})
        EXPECT_EQ(std::stod(MCCommon_850::MCPMMLExporter::FormatReal(v)), v);
    EXPECT_EQ(MCCommon_850::MCPMMLExporter::FormatReal(0.1), "0.1");
    EXPECT_EQ(MCCommon_850::MCPMMLExporter::FormatReal(5.0), "5");
}

#include "platform/pmml/mcpmmlregrexporter.h"

#include <algorithm>
#include <ostream>

#include "platform/common/mcmv.h"
#include "platform/display/mcdisplay.h"
#include "platform/pmml/mcpmmlexporter.h"

namespace MCMath_850 {

using MCCommon_850::MCMV;
using MCCommon_850::MCPMMLExporter;
using MCXML_850::XMLElement;

MCPMMLRegrExporter::MCPMMLRegrExporter(const MCRegSettings& settings) : m_settings(settings) {}

std::vector<int> MCPMMLRegrExporter::GetActiveFactors() const { return m_settings.GetFactors(); }

std::vector<int> MCPMMLRegrExporter::GetActiveCovariates() const { return m_settings.GetCovariates(); }

bool MCPMMLRegrExporter::hasVariables(const MCXML_850::MCVarList& vars, const std::vector<int>& variables) const {
    return std::all_of(variables.begin(), variables.end(), [&](int v) { return vars.IsValidIndex(v); });
}

bool MCPMMLRegrExporter::ExportMiningSchema(XMLElement* model, const MCXML_850::MCVarList& vars) const {
    struct Use {
        int variable;
        const char* usage;
    };
    std::vector<Use> uses{{m_settings.GetDependentVar(), "target"}};
    for (int v : GetActiveFactors()) uses.push_back({v, "active"});
    for (int v : GetActiveCovariates()) uses.push_back({v, "active"});
    if (m_settings.GetFrequencyWeightVar() >= 0) uses.push_back({m_settings.GetFrequencyWeightVar(), "frequencyWeight"});
    if (m_settings.GetRegrWeightVar() >= 0) uses.push_back({m_settings.GetRegrWeightVar(), "analysisWeight"});
    if (model == nullptr) return false;
    for (const Use& u : uses)
        if (!vars.IsValidIndex(u.variable)) return false;

    XMLElement* schema = model->InsertNewChildElement("MiningSchema");
    std::vector<int> written;
    for (const Use& u : uses) {
        if (std::find(written.begin(), written.end(), u.variable) != written.end()) continue;
        written.push_back(u.variable);
        XMLElement* field = schema->InsertNewChildElement("MiningField");
        field->SetAttribute("name", vars.Get(u.variable).GetName().c_str());
        field->SetAttribute("usageType", u.usage);
    }
    return true;
}

bool MCPMMLRegrExporter::ExportParameterList(XMLElement* model) const {
    if (model == nullptr) return false;
    const auto& labels = m_settings.GetParameterLabels();
    XMLElement* list = model->InsertNewChildElement("ParameterList");
    for (int i = 0; i < m_settings.GetNParameters(); ++i) {
        XMLElement* p = list->InsertNewChildElement("Parameter");
        p->SetAttribute("name", ParameterName(i).c_str());
        if (static_cast<std::size_t>(i) < labels.size()) p->SetAttribute("label", labels[static_cast<std::size_t>(i)].c_str());
    }
    return true;
}

namespace {

bool exportPredictorList(XMLElement* model, const char* element, const MCXML_850::MCVarList& vars,
                         const std::vector<int>& variables) {
    if (model == nullptr) return false;
    for (int v : variables)
        if (!vars.IsValidIndex(v)) return false;
    XMLElement* list = model->InsertNewChildElement(element);
    for (int v : variables) list->InsertNewChildElement("Predictor")->SetAttribute("name", vars.Get(v).GetName().c_str());
    return true;
}

} // namespace

bool MCPMMLRegrExporter::ExportFactorList(XMLElement* model, const MCXML_850::MCVarList& vars) const {
    return exportPredictorList(model, "FactorList", vars, GetActiveFactors());
}

bool MCPMMLRegrExporter::ExportCovariateList(XMLElement* model, const MCXML_850::MCVarList& vars) const {
    return exportPredictorList(model, "CovariateList", vars, GetActiveCovariates());
}

bool MCPMMLRegrExporter::ExportPPMatrix(XMLElement* model, const MCXML_850::MCVarList& vars) const {
    if (model == nullptr || !hasVariables(vars, GetActiveFactors()) || !hasVariables(vars, GetActiveCovariates()))
        return false;
    XMLElement* matrix = model->InsertNewChildElement("PPMatrix");
    const auto cell = [&](const std::string& value, const std::string& predictor, int parameter) {
        XMLElement* c = matrix->InsertNewChildElement("PPCell");
        c->SetAttribute("value", value.c_str());
        c->SetAttribute("predictorName", predictor.c_str());
        c->SetAttribute("parameterName", ParameterName(parameter).c_str());
    };
    for (const MCModelEffect& e : m_settings.GetDesign().GetEffects()) {
        const MCXML_850::MCContVar& var = vars.Get(e.variable);
        if (e.IsCovariate()) {
            cell("1", var.GetName(), e.firstParameter);
            continue;
        }
        for (int c = 0; c < e.nCategories; ++c)
            cell(MCPMMLExporter::CategoryValue(var, c), var.GetName(), e.firstParameter + c);
    }
    return true;
}

bool MCPMMLRegrExporter::ExportPCovMatrix(XMLElement* model, const MCSymMatrix* covariance) const {
    const int n = GetCovarianceSize();
    if (model == nullptr || covariance == nullptr || covariance->Size() != n) return false;
    for (int i = 0; i < n; ++i)
        for (int j = 0; j <= i; ++j)
            if (MCMV::IsMissing(covariance->Get(i, j))) return false;
    XMLElement* matrix = model->InsertNewChildElement("PCovMatrix");
    matrix->SetAttribute("type", "model");
    for (int i = 0; i < n; ++i) {
        if (m_settings.IsRedundant(i)) continue;
        const std::string row = ParameterName(i);
        for (int j = 0; j <= i; ++j) {
            if (m_settings.IsRedundant(j)) continue;
            XMLElement* c = matrix->InsertNewChildElement("PCovCell");
            c->SetAttribute("pRow", row.c_str());
            c->SetAttribute("pCol", ParameterName(j).c_str());
            c->SetAttribute("value", MCPMMLExporter::FormatReal(covariance->Get(i, j)).c_str());
        }
    }
    return true;
}

bool MCPMMLRegrExporter::ExportParamMatrix(XMLElement* model) const {
    const int n = m_settings.GetNParameters();
    const auto& b = m_settings.GetCoefficients();
    if (model == nullptr || b.size() < static_cast<std::size_t>(n)) return false;
    for (int i = 0; i < n; ++i)
        if (!m_settings.IsRedundant(i) && MCMV::IsMissing(b[static_cast<std::size_t>(i)])) return false;
    XMLElement* matrix = model->InsertNewChildElement("ParamMatrix");
    for (int i = 0; i < n; ++i) {
        const bool redundant = m_settings.IsRedundant(i);
        XMLElement* c = matrix->InsertNewChildElement("PCell");
        c->SetAttribute("parameterName", ParameterName(i).c_str());
        c->SetAttribute("beta", MCPMMLExporter::FormatReal(redundant ? 0.0 : b[static_cast<std::size_t>(i)]).c_str());
        c->SetAttribute("df", redundant ? 0 : 1);
    }
    return true;
}

void MCPMMLRegrExporter::Display(std::ostream& os) const {
    using namespace MCDisplay_850;
    StreamGuard guard(os);
    DisplayText(0, "MCPMMLRegrExporter display start");
    DisplayIV("Active factors", GetActiveFactors());
    DisplayIV("Active covariates", GetActiveCovariates());
    DisplayI("Covariance size", GetCovarianceSize());
    m_settings.Display(os);
    DisplayText(0, "MCPMMLRegrExporter display end");
}

} // namespace MCMath_850

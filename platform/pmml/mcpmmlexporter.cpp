#include "platform/pmml/mcpmmlexporter.h"

#include <algorithm>
#include <charconv>
#include <ostream>

#include "platform/display/mcdisplay.h"

namespace MCCommon_850 {

using MCXML_850::XMLElement;

namespace {

bool isIntegerNumeral(const std::string& s) {
    std::size_t i = s.size() > 1 && s[0] == '-' ? 1 : 0;
    if (i == s.size()) return false;
    for (; i < s.size(); ++i)
        if (s[i] < '0' || s[i] > '9') return false;
    return true;
}

bool isReal(const std::string& s) {
    double v = 0.0;
    const char* end = s.data() + s.size();
    const auto r = std::from_chars(s.data(), end, v);
    return r.ec == std::errc() && r.ptr == end;
}

} // namespace

MCPMMLExporter::MCPMMLExporter(std::string application, std::string version, std::string extender)
    : m_application(std::move(application)), m_version(std::move(version)), m_extender(std::move(extender)) {}

std::string MCPMMLExporter::FormatReal(double value) {
    char buffer[32];
    const auto r = std::to_chars(buffer, buffer + sizeof buffer, value);
    return std::string(buffer, r.ptr);
}

std::string MCPMMLExporter::CategoryValue(const MCXML_850::MCContVar& var, int code) {
    const auto& labels = var.GetValueLabels();
    if (code >= 0 && static_cast<std::size_t>(code) < labels.size()) return labels[static_cast<std::size_t>(code)];
    return std::to_string(code);
}

const char* MCPMMLExporter::CategoryDataType(const MCXML_850::MCContVar& var, int nCategories) {
    bool integers = true, reals = true;
    for (int c = 0; c < nCategories && reals; ++c) {
        const std::string v = CategoryValue(var, c);
        integers = integers && isIntegerNumeral(v);
        reals = integers || isReal(v);
    }
    return integers ? "integer" : reals ? "double" : "string";
}

XMLElement* MCPMMLExporter::ExportHeader(MCXML_850::XMLDocument& doc, const std::string& description) const {
    doc.InsertEndChild(doc.NewDeclaration());
    XMLElement* pmml = doc.NewElement("PMML");
    pmml->SetAttribute("xmlns", kNamespace);
    pmml->SetAttribute("version", kVersion);
    doc.InsertEndChild(pmml);
    XMLElement* header = pmml->InsertNewChildElement("Header");
    if (!description.empty()) header->SetAttribute("description", description.c_str());
    XMLElement* app = header->InsertNewChildElement("Application");
    app->SetAttribute("name", m_application.c_str());
    if (!m_version.empty()) app->SetAttribute("version", m_version.c_str());
    return pmml;
}

bool MCPMMLExporter::ExportDataDictionary(XMLElement* pmml, const MCXML_850::MCVarList& vars,
                                          const std::vector<Field>& fields) const {
    if (pmml == nullptr) return false;
    std::vector<Field> unique;
    for (const Field& f : fields) {
        if (!vars.IsValidIndex(f.variable)) return false;
        const bool seen = std::any_of(unique.begin(), unique.end(),
                                      [&](const Field& u) { return u.variable == f.variable; });
        if (!seen) unique.push_back(f);
    }
    XMLElement* dict = pmml->InsertNewChildElement("DataDictionary");
    dict->SetAttribute("numberOfFields", static_cast<unsigned>(unique.size()));
    for (const Field& f : unique) {
        const MCXML_850::MCContVar& var = vars.Get(f.variable);
        XMLElement* field = dict->InsertNewChildElement("DataField");
        field->SetAttribute("name", var.GetName().c_str());
        if (f.nCategories <= 0) {
            field->SetAttribute("optype", "continuous");
            field->SetAttribute("dataType", "double");
            continue;
        }
        field->SetAttribute("optype", "categorical");
        field->SetAttribute("dataType", CategoryDataType(var, f.nCategories));
        for (int c = 0; c < f.nCategories; ++c)
            field->InsertNewChildElement("Value")->SetAttribute("value", CategoryValue(var, c).c_str());
    }
    return true;
}

XMLElement* MCPMMLExporter::ExportExtension(XMLElement* parent, const std::string& name,
                                            const std::string& value) const {
    if (parent == nullptr) return nullptr;
    XMLElement* e = parent->InsertNewChildElement("Extension");
    e->SetAttribute("extender", m_extender.c_str());
    e->SetAttribute("name", name.c_str());
    e->SetAttribute("value", value.c_str());
    return e;
}

void MCPMMLExporter::Display(std::ostream& os) const {
    using namespace MCDisplay_850;
    StreamGuard guard(os);
    DisplayText(0, "MCPMMLExporter display start");
    DisplayS("Application", m_application);
    DisplayS("Version", m_version);
    DisplayS("Extender", m_extender);
    DisplayText(0, "MCPMMLExporter display end");
}

} // namespace MCCommon_850

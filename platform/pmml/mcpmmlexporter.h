#pragma once
// MCPMMLExporter: the parts of a PMML 4.4 document that do not depend on the
// kind of model: the root element with its Header, the DataDictionary of the
// fields a model reads, and Extension elements. Elements are built in a
// tinyxml2 document and written with WriteTree.
//
// Category values: a coded variable holds category codes 0..k-1; the
// document names each category by its original data value, the variable's
// value label of that code (the code itself when the variable has no label
// for it), so that a consumer scores raw data.
#include <iosfwd>
#include <string>
#include <vector>

#include "platform/pmml/writetree.h"
#include "platform/variables/mcvarlist.h"

namespace MCCommon_850 {

class MCPMMLExporter {
public:
    static constexpr const char* kNamespace = "http://www.dmg.org/PMML-4_4";
    static constexpr const char* kVersion = "4.4";

    // One field of the data dictionary: a variable, categorical with its
    // category count or continuous (nCategories 0).
    struct Field {
        int variable = -1;
        int nCategories = 0;
    };

    // application/version go into the Header's Application element;
    // extender marks the Extension elements written here.
    MCPMMLExporter(std::string application, std::string version, std::string extender);

    // Starts the document: the PMML root (namespace and version) holding a
    // Header with the description and the Application. Returns the root.
    MCXML_850::XMLElement* ExportHeader(MCXML_850::XMLDocument& doc, const std::string& description) const;
    // Appends the DataDictionary: one DataField per field, continuous
    // (double) or categorical with one Value per category. A variable named
    // twice is written once. False, with nothing appended, when a variable is
    // not in the list.
    bool ExportDataDictionary(MCXML_850::XMLElement* pmml, const MCXML_850::MCVarList& vars,
                              const std::vector<Field>& fields) const;
    // Appends <Extension extender name value/> to parent; null on failure.
    MCXML_850::XMLElement* ExportExtension(MCXML_850::XMLElement* parent, const std::string& name,
                                           const std::string& value) const;

    // The data value that stands for category `code` of a variable.
    static std::string CategoryValue(const MCXML_850::MCContVar& var, int code);
    // The dataType of a categorical field's values: "integer" when every
    // value is an integer numeral, "double" when every one is a number,
    // otherwise "string".
    static const char* CategoryDataType(const MCXML_850::MCContVar& var, int nCategories);
    // The shortest text that reads back as the same double.
    static std::string FormatReal(double value);

    void Display(std::ostream& os) const;

private:
    std::string m_application;
    std::string m_version;
    std::string m_extender;
};

} // namespace MCCommon_850

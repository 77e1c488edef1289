#include "tests/pmml/pmmlschemacheck.h"

#include <libxml/parser.h>
#include <libxml/xmlschemas.h>

#include <memory>
#include <stdexcept>

namespace pmmltest {

namespace {

void collect(void* out, xmlErrorPtr error) {
    if (error != nullptr && error->message != nullptr) *static_cast<std::string*>(out) += error->message;
}

// The schema is parsed once and kept for the whole test run.
xmlSchemaPtr schema() {
    static const xmlSchemaPtr parsed = [] {
        const std::string path = std::string(BSN_SOURCE_DIR) + "/tests/data/pmml-4-4-grm-subset.xsd";
        const std::unique_ptr<xmlSchemaParserCtxt, void (*)(xmlSchemaParserCtxtPtr)> ctxt(
            xmlSchemaNewParserCtxt(path.c_str()), xmlSchemaFreeParserCtxt);
        xmlSchemaPtr s = ctxt ? xmlSchemaParse(ctxt.get()) : nullptr;
        if (s == nullptr) throw std::runtime_error("cannot read the schema " + path);
        return s;
    }();
    return parsed;
}

} // namespace

std::string SchemaProblems(const std::string& xmlText) {
    std::string problems;
    const std::unique_ptr<xmlSchemaValidCtxt, void (*)(xmlSchemaValidCtxtPtr)> valid(xmlSchemaNewValidCtxt(schema()),
                                                                                        xmlSchemaFreeValidCtxt);
    xmlSchemaSetValidStructuredErrors(valid.get(), collect, &problems);
    const std::unique_ptr<xmlDoc, void (*)(xmlDocPtr)> doc(
        xmlReadMemory(xmlText.data(), static_cast<int>(xmlText.size()), "pmml.xml", nullptr,
                      XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING),
        xmlFreeDoc);
    if (!doc) return "the document is not well-formed XML";
    if (xmlSchemaValidateDoc(valid.get(), doc.get()) != 0 && problems.empty()) problems = "the document is not valid";
    return problems;
}

} // namespace pmmltest

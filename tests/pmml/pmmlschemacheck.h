#pragma once
// Validation of PMML documents against the text of the DMG PMML 4.4 XML schema (the part kept in
// tests/data/pmml-4-4-grm-subset.xsd) by libxml2's XML Schema validator: element order and counts,
// required and undeclared attributes, attribute types and the root's namespace.
#include <string>

namespace pmmltest {

// The validator's messages, one a line; empty when the document conforms.
// A document that is not well-formed XML also gives a message.
std::string SchemaProblems(const std::string& xmlText);

} // namespace pmmltest

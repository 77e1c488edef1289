#pragma once
// A structure check of PMML documents against the text of the DMG PMML 4.4
// schema (the part kept in tests/data/pmml-4-4-grm-subset.xsd): element
// order and counts (sequences, choices, groups, minOccurs/maxOccurs),
// undeclared and missing required attributes, attribute values of the
// numeric, boolean and enumerated types, text where none is allowed, and
// the root's namespace. Content models are matched greedily, which is exact
// for the deterministic content models a schema must have.
#include <string>
#include <vector>

namespace pmmltest {

// The problems found (empty when the document conforms); a document that is
// not well-formed XML gives one problem saying so.
std::vector<std::string> CheckAgainstSchema(const std::string& xmlText);

// The problems joined one per line, for test messages.
std::string JoinProblems(const std::vector<std::string>& problems);

} // namespace pmmltest

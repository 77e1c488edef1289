#pragma once
// The XML element type the PMML exporters build documents from, and the
// writer of a finished document.
#include <iosfwd>

#include <tinyxml2.h>

namespace MCXML_850 {

using XMLElement = tinyxml2::XMLElement;
using XMLDocument = tinyxml2::XMLDocument;

// Writes the document as indented XML text with its declaration; false when
// the stream fails.
bool WriteTree(const XMLDocument& doc, std::ostream& os);

} // namespace MCXML_850

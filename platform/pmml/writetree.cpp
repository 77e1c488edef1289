#include "platform/pmml/writetree.h"

#include <algorithm>
#include <ostream>

namespace MCXML_850 {

bool WriteTree(const XMLDocument& doc, std::ostream& os) {
    tinyxml2::XMLPrinter printer;
    doc.Print(&printer);
    // CStrSize() counts the terminating null.
    os.write(printer.CStr(), std::max(printer.CStrSize() - 1, 0));
    return static_cast<bool>(os);
}

} // namespace MCXML_850

// Reads the document type declaration. What it declares is of no use to us, but that it is well-formed is
// checked.
#pragma once

#include "xml/scanner.h"

namespace rovescio::xml {

// From behind "<!DOCTYPE"; the place behind it or null, as in Scanner.
const char* readDocumentType(Scanner& scanner, const char* p);

}  // namespace rovescio::xml

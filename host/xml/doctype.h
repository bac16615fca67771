// Reads the document type declaration. What it declares is not used, but it must be well-formed.
#pragma once

#include "xml/scanner.h"

namespace rovescio::xml {

// Starts after "<!DOCTYPE"; the place after it or null, as in Scanner.
const char* readDocumentType(Scanner& scanner, const char* p);

}  // namespace rovescio::xml

// Removal of the smart shapes that hang on an entry.
#pragma once

// Removes each shape that has a mark on the entry: its marks and center shapes in every measure that it
// crosses (in the given measure alone when the shape's record is gone), its record, and the entry's mark.
// Always false.
bool DeleteSmartShapes(unsigned int entryNumber, int measure);

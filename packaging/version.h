// The one place where the version of every DLL and EXE is set. Read by the resource compiler and by C++ code.
#ifndef TESSARY_PACKAGING_VERSION_H
#define TESSARY_PACKAGING_VERSION_H

// What people see.
#define TESSARY_PRODUCT_VERSION 1, 0, 0, 0
#define TESSARY_PRODUCT_VERSION_TEXT "1.0.0"

// What the spooler compares to tell a newer driver file: 0, then 3 for a user-mode driver, then the feature set, then
// the fix number. Raise one of the last two with every release.
#define TESSARY_FILE_VERSION 0, 3, 256, 1
#define TESSARY_FILE_VERSION_TEXT "0.3.256.1"

#define TESSARY_COMPANY "Zelmora"
#define TESSARY_PRODUCT "Tessary Universal EMF Driver"

#endif

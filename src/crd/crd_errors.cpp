#include "crd/crd_errors.h"

#include "base/format.h"
#include "base/translation.h"

namespace tramline::crd {

namespace {

struct ErrorEntry {
    int code;
    const char *text;
};

// Some texts name file kinds this program refuses; they stay so that codes
// coming from shared files and other programs still read correctly.
constexpr ErrorEntry kErrorTexts[] = {
    {0, trNoop("No error.")},
    {1, trNoop("Point name is too long.")},
    {2, trNoop("Point name must not be blank.")},
    {3, trNoop("Point name is numerically too low.")},
    {4, trNoop("Point name is numerically too high.")},
    {5, trNoop("Point name contains an invalid character.")},
    {6, trNoop("Land Desktop requires point names to contain only letters, digits, or the '_'.\n"
               "No spaces are allowed.  If the name begins with a digit, the entire name\n"
               "must be a number of 7 digits or less, otherwise, 255 characters is the\n"
               "maximum.\n"
               "To bypass these Land Desktop restrictions, give the coordinate file a name\n"
               "other than points.mdb.")},
    {7, trNoop("Unspecified error in point name.")},
    {8, trNoop("Description contains too many characters.")},
    {9, trNoop("Point Code contains too many characters.")},
    {10, trNoop("The specified point was not found.")},
    {11, trNoop("The point could not be added to the Land Desktop coordinate file for some unknown "
                "reason.")},
    {12,
     trNoop("The point could not be added to the Simplicity \"Sight\" Survey file for some unknown "
            "reason.")},
    {13, trNoop("Simplicity \"Sight\" Survey requires point names to be 7 digits or less.")},
    {20, trNoop("The coordinate file could not be created.")},
    {21, trNoop("The coordinate file could not be opened. Perhaps it is read-only or\n"
                "is being used by another program or does not exist.")},
    {22, trNoop("A coordinate file must be opened before this operation can be performed.")},
    {23, trNoop("Unspecified error reading or writing file.")},
    {24,
     trNoop(
         "Too many coordinate files open (No more than 7 C&G coordinate files may be open at the "
         "same time).")},
    {25, trNoop("Deleting a coordinate file failed.")},
    {26, trNoop("Renaming a coordinate file failed.")},
    {27, trNoop("Land Desktop points.mdb files can only be accessed in an AutoCAD environment.")},
    {28, trNoop("Land Desktop support file, morvanedb.dll, could not be loaded.")},
    {29,
     trNoop("Land Desktop support is not available due to missing MFC DAO support.\n"
            "Perhaps there was an installation problem or perhaps Microsoft Access is needed.")},
    {30, trNoop("The file is not a valid Land Desktop coordinate file.")},
    {31, trNoop("Land Desktop coordinate files are named points.mdb.")},
    {32, trNoop("Simplicity \"Sight\" Survey files must have a .zak file extension.")},
    {33, trNoop("Simplicity \"Sight\" Survey support file, morvanedb.dll, could not be loaded.")},
    {34,
     trNoop("Simplicity \"Sight\" Survey support is not available due to missing MFC DAO support.\n"
            "Perhaps there was an installation problem or perhaps Microsoft Access is needed.")},
    {35, trNoop("The file is not a valid Simplicity \"Sight\" Survey file.")},
    {42, trNoop("SQLite coordinate files must have a .crdb file extension.")},
    {50, trNoop("Unspecified internal error (unknown function return value, etc.)")},
    {51, trNoop("Memory allocation has failed.")},
    {52, trNoop("Point name contains an invalid character for numeric format crd files.\n"
                "Consider switching crd file format to alphanumeric.")},
    {53, trNoop("Point is locked.")},
    {54, trNoop("File type not supported")},
    {55, trNoop("Failed to delete records")},
    {56, trNoop("Failed to find Feature in the DB")},
    {60, trNoop("The coordinate file is damaged: its records are cut, out of order or "
                "doubled.")},
    {61, trNoop("A coordinate is not a finite number.")},
};

} // namespace

std::string errorText(int code) {
    for (const auto &entry : kErrorTexts)
        if (entry.code == code)
            return tr(entry.text);
    return format(tr("No description is available for error #%d."), code);
}

} // namespace tramline::crd

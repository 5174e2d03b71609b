// The error codes of the coordinate store. Every operation clears the code
// of its file first and sets one of these when it fails; callers show
// errorText(code). The numbers are shared with other programs that use the
// same files, so they never change.
#pragma once

#include <string>

namespace tramline::crd {

enum CrdError : int {
    kNoError = 0,
    kNameTooLong = 1,
    kNameBlank = 2,
    kNameTooLow = 3,
    kNameTooHigh = 4,
    kNameInvalidCharacter = 5,
    kLandDesktopNameRules = 6,
    kNameUnspecified = 7,
    kDescriptionTooLong = 8,
    kCodeTooLong = 9,
    kPointNotFound = 10,
    kLandDesktopAddFailed = 11,
    kSightAddFailed = 12,
    kSightNameTooLong = 13,
    kCannotCreate = 20,
    kCannotOpen = 21,
    kNotOpen = 22,
    kReadWriteFailed = 23,
    kTooManyOpen = 24,
    kDeleteFileFailed = 25,
    kRenameFailed = 26,
    kLandDesktopNeedsAutoCad = 27,
    kLandDesktopLibraryMissing = 28,
    kLandDesktopNoDao = 29,
    kLandDesktopInvalid = 30,
    kLandDesktopName = 31,
    kSightExtension = 32,
    kSightLibraryMissing = 33,
    kSightNoDao = 34,
    kSightInvalid = 35,
    kSqliteExtension = 42,
    kInternalError = 50,
    kOutOfMemory = 51,
    kNameNotNumeric = 52,
    kPointLocked = 53,
    kFileTypeNotSupported = 54,
    kDeleteRecordsFailed = 55,
    kFeatureNotFound = 56,
    // Our own, above the shared range.
    kDamagedFile = 60,
    kNotANumber = 61,
};

/// The (translated) text of an error code; codes without a text give
/// "No description is available for error #<code>.".
std::string errorText(int code);

} // namespace tramline::crd

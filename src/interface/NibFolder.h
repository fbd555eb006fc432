#pragma once
// Nib folders (X.nib/ holding designable.nib, keyedobjects*.nib, classes.nib, info.nib) and the
// stand-in for compiled nibs until their reader is wired in.

#include "InterfaceFile.h"

namespace interface {

// A nib folder: its strings come from designable.nib (a legacy xib archive); writing makes a
// folder with the same files and the merged designable.nib. A folder without designable.nib
// holds compiled nibs only.
std::unique_ptr<InterfaceFile> openNibFolder(const QString &path, QString *error);

// A compiled nib that cannot be read yet: no strings, a warning that says so, and no writing.
std::unique_ptr<InterfaceFile> unsupportedCompiledNib(const QString &path);

}  // namespace interface

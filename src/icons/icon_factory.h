// What libVrUInfoIcons.so offers. It is loaded when an icon is first asked for, so that a program without windows never
// loads the libraries for pictures.
#pragma once

class QIcon;
class QString;

namespace vruinfo::internal
{

inline constexpr char kIconLibrary[] = "libVrUInfoIcons.so";

inline constexpr char kMakeIcon[] = "vrMakeResourceIcon";
inline constexpr char kDeleteIcon[] = "vrDeleteIcon";

using MakeIcon = QIcon* (*)(const QString& path);
using DeleteIcon = void (*)(QIcon* icon);

} // namespace vruinfo::internal

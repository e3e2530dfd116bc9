#pragma once
// Who may see what: the rooms, the rooms that each may include and link, where the toolkit may be seen, and what public
// headers may show. Only tables and questions to them; reading a tree is left to the tree check.

#include <string_view>

namespace archcheck {

/// One room, by its path below libraries/, and the rooms whose headers it may include, parted by blanks.
struct Room {
  std::string_view name;
  std::string_view alias; ///< Its target is also called Kr:: and this; empty for a part of a room.
  std::string_view mayInclude;
};

/// The room of a name, or null.
const Room* FindRoom(std::string_view aName);
/// The room that a linked target stands for, by its name or its alias; null for a foreign target.
const Room* FindRoomOfTarget(std::string_view aTarget);
/// Whether a file, by its path from the root, is a public header of the windows that belongs to their rules.
bool IsValueHeader(std::string_view aFile);
/// Whether the room may include another; every room includes itself.
bool MayInclude(const Room& aRoom, std::string_view aOther);

/// Whether a path of an include directive is one of the toolkit's headers.
bool IsToolkitHeader(std::string_view aInclude);
/// Whether a linked target belongs to the toolkit.
bool IsToolkitTarget(std::string_view aTarget);
/// Whether a file, by its path from the project's root, may see the toolkit.
bool MaySeeToolkit(std::string_view aFile);

/// Whether a path of an include directive is a header of the C++20 standard library.
bool IsStandardHeader(std::string_view aInclude);
/// Whether public headers of the room may include this one toolkit header: the one that names native windows.
bool IsPublicToolkitHeader(std::string_view aRoom, std::string_view aInclude);

/// Whether a file name is in lower case: letters, digits and underscores, and an ending.
bool IsLowerCaseName(std::string_view aFileName);

} // namespace archcheck

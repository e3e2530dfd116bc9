#pragma once
// The words of a camera description (GenApi 1.0 and 1.1) as enumerations. Reading a description is left to the
// parameter array.

/// What kind of value a parameter has. The numbers are part of the interface and never change.
enum class KrGenType {
  Integer = 0,
  Enumeration = 1,
  Boolean = 2,
  String = 3,
  Command = 4,
  Float = 5,
  Register = 6, ///< Bytes that only a program can make sense of.
  Other = 7,    ///< A node without a value.
};

/// For whom a parameter is meant; each level includes those before it. The numbers never change.
enum class KrGenVisibility {
  Beginner = 0,
  Expert = 1,
  Guru = 2,
  Invisible = 3, ///< For programs alone.
};

/// Where a parameter's name comes from. The numbers never change.
enum class KrGenNameSpace {
  Standard = 0, ///< GenICam SFNC.
  Custom = 1,   ///< The maker.
};

/// How a number is best shown. The numbers never change.
enum class KrGenRepresentation {
  Linear = 0,
  Logarithmic = 1,
  Boolean = 2,
  PureNumber = 3,
  HexNumber = 4,
  IPV4Address = 5,
  MACAddress = 6,
};

/// How a floating-point number is best written. The numbers never change.
enum class KrGenDisplayNotation {
  Automatic = 0,
  Fixed = 1,
  Scientific = 2,
};

/// What can be done with a parameter at the moment, everything considered that it stands on. The numbers never change.
enum class KrGenAccessMode {
  NotImplemented = 0, ///< This camera does not have it ("NI").
  NotAvailable = 1,   ///< Neither readable nor writable as things stand ("NA").
  WriteOnly = 2,      ///< "WO".
  ReadOnly = 3,       ///< "RO".
  ReadWrite = 4,      ///< "RW".
};

/// Whether a parameter array can reach its registers. The numbers never change.
enum class KrGenArrayAccess {
  Open = 0,   ///< Values come from the registers.
  Closed = 1, ///< The array was closed; every access fails.
};

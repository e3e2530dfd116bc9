#pragma once
// The codes of the GenICam Pixel Format Naming Convention (PFNC) that the library knows by name, each under its PFNC
// name. What a code means stands in krpixeltype.h, how it is read is the converter's business.

#include <cstdint>

/// A 32-bit pixel format code of the PFNC. Codes that are not listed here are carried unchanged, so that a format that
/// we do not know can still be named by its number.
using KrPixelType = std::uint32_t;

/// The codes by name.
namespace KrPixel {
/// @name Grey
/// @{

/// The code that has this name.
inline constexpr KrPixelType Mono1p = 0x01010037;
inline constexpr KrPixelType Mono2p = 0x01020038;
inline constexpr KrPixelType Mono4p = 0x01040039;
inline constexpr KrPixelType Mono8 = 0x01080001;
inline constexpr KrPixelType Mono8s = 0x01080002;
inline constexpr KrPixelType Mono10p = 0x010A0046;
inline constexpr KrPixelType Mono10Packed = 0x010C0004;
inline constexpr KrPixelType Mono12Packed = 0x010C0006;
inline constexpr KrPixelType Mono12p = 0x010C0047;
inline constexpr KrPixelType Mono14p = 0x010E0104;
inline constexpr KrPixelType Mono10 = 0x01100003;
inline constexpr KrPixelType Mono12 = 0x01100005;
inline constexpr KrPixelType Mono16 = 0x01100007;
inline constexpr KrPixelType Mono14 = 0x01100025;
inline constexpr KrPixelType Mono32 = 0x01200111;
/// @}

/// @name Colour filter arrays
/// @{

/// The code that has this name.
inline constexpr KrPixelType BayerGR4p = 0x0104010D;
inline constexpr KrPixelType BayerRG4p = 0x0104010E;
inline constexpr KrPixelType BayerGB4p = 0x0104010F;
inline constexpr KrPixelType BayerBG4p = 0x01040110;
inline constexpr KrPixelType BayerGR8 = 0x01080008;
inline constexpr KrPixelType BayerRG8 = 0x01080009;
inline constexpr KrPixelType BayerGB8 = 0x0108000A;
inline constexpr KrPixelType BayerBG8 = 0x0108000B;
inline constexpr KrPixelType BayerBG10p = 0x010A0052;
inline constexpr KrPixelType BayerGB10p = 0x010A0054;
inline constexpr KrPixelType BayerGR10p = 0x010A0056;
inline constexpr KrPixelType BayerRG10p = 0x010A0058;
inline constexpr KrPixelType BayerGR10Packed = 0x010C0026;
inline constexpr KrPixelType BayerRG10Packed = 0x010C0027;
inline constexpr KrPixelType BayerGB10Packed = 0x010C0028;
inline constexpr KrPixelType BayerBG10Packed = 0x010C0029;
inline constexpr KrPixelType BayerGR12Packed = 0x010C002A;
inline constexpr KrPixelType BayerRG12Packed = 0x010C002B;
inline constexpr KrPixelType BayerGB12Packed = 0x010C002C;
inline constexpr KrPixelType BayerBG12Packed = 0x010C002D;
inline constexpr KrPixelType BayerBG12p = 0x010C0053;
inline constexpr KrPixelType BayerGB12p = 0x010C0055;
inline constexpr KrPixelType BayerGR12p = 0x010C0057;
inline constexpr KrPixelType BayerRG12p = 0x010C0059;
inline constexpr KrPixelType BayerGR14p = 0x010E0105;
inline constexpr KrPixelType BayerRG14p = 0x010E0106;
inline constexpr KrPixelType BayerGB14p = 0x010E0107;
inline constexpr KrPixelType BayerBG14p = 0x010E0108;
inline constexpr KrPixelType BayerGR10 = 0x0110000C;
inline constexpr KrPixelType BayerRG10 = 0x0110000D;
inline constexpr KrPixelType BayerGB10 = 0x0110000E;
inline constexpr KrPixelType BayerBG10 = 0x0110000F;
inline constexpr KrPixelType BayerGR12 = 0x01100010;
inline constexpr KrPixelType BayerRG12 = 0x01100011;
inline constexpr KrPixelType BayerGB12 = 0x01100012;
inline constexpr KrPixelType BayerBG12 = 0x01100013;
inline constexpr KrPixelType BayerGR16 = 0x0110002E;
inline constexpr KrPixelType BayerRG16 = 0x0110002F;
inline constexpr KrPixelType BayerGB16 = 0x01100030;
inline constexpr KrPixelType BayerBG16 = 0x01100031;
inline constexpr KrPixelType BayerGR14 = 0x01100109;
inline constexpr KrPixelType BayerRG14 = 0x0110010A;
inline constexpr KrPixelType BayerGB14 = 0x0110010B;
inline constexpr KrPixelType BayerBG14 = 0x0110010C;
/// @}

/// @name Colour
/// @{

/// The code that has this name.
inline constexpr KrPixelType RGB565p = 0x02100035;
inline constexpr KrPixelType BGR565p = 0x02100036;
inline constexpr KrPixelType RGB8 = 0x02180014;
inline constexpr KrPixelType BGR8 = 0x02180015;
inline constexpr KrPixelType BGR10p = 0x021E0048;
inline constexpr KrPixelType RGB10p = 0x021E005C;
inline constexpr KrPixelType RGBa8 = 0x02200016;
inline constexpr KrPixelType BGRa8 = 0x02200017;
inline constexpr KrPixelType RGB10V1Packed = 0x0220001C;
inline constexpr KrPixelType RGB10p32 = 0x0220001D;
inline constexpr KrPixelType RGB12V1Packed = 0x02240034;
inline constexpr KrPixelType BGR12p = 0x02240049;
inline constexpr KrPixelType RGB12p = 0x0224005D;
inline constexpr KrPixelType BGRa10p = 0x0228004D;
inline constexpr KrPixelType RGBa10p = 0x02280060;
inline constexpr KrPixelType RGB10 = 0x02300018;
inline constexpr KrPixelType BGR10 = 0x02300019;
inline constexpr KrPixelType RGB12 = 0x0230001A;
inline constexpr KrPixelType BGR12 = 0x0230001B;
inline constexpr KrPixelType RGB16 = 0x02300033;
inline constexpr KrPixelType BGR14 = 0x0230004A;
inline constexpr KrPixelType BGR16 = 0x0230004B;
inline constexpr KrPixelType BGRa12p = 0x0230004F;
inline constexpr KrPixelType RGB14 = 0x0230005E;
inline constexpr KrPixelType RGBa12p = 0x02300062;
inline constexpr KrPixelType BGRa10 = 0x0240004C;
inline constexpr KrPixelType BGRa12 = 0x0240004E;
inline constexpr KrPixelType BGRa14 = 0x02400050;
inline constexpr KrPixelType BGRa16 = 0x02400051;
inline constexpr KrPixelType RGBa10 = 0x0240005F;
inline constexpr KrPixelType RGBa12 = 0x02400061;
inline constexpr KrPixelType RGBa14 = 0x02400063;
inline constexpr KrPixelType RGBa16 = 0x02400064;
/// @}

/// @name Colour in planes
/// @{

/// The code that has this name.
inline constexpr KrPixelType RGB8_Planar = 0x02180021;
inline constexpr KrPixelType RGB10_Planar = 0x02300022;
inline constexpr KrPixelType RGB12_Planar = 0x02300023;
inline constexpr KrPixelType RGB16_Planar = 0x02300024;
/// @}

/// @name One colour alone
/// @{

/// The code that has this name.
inline constexpr KrPixelType R8 = 0x010800C9;
inline constexpr KrPixelType G8 = 0x010800CD;
inline constexpr KrPixelType B8 = 0x010800D1;
inline constexpr KrPixelType R10 = 0x010A00CA;
inline constexpr KrPixelType G10 = 0x010A00CE;
inline constexpr KrPixelType B10 = 0x010A00D2;
inline constexpr KrPixelType R12 = 0x010C00CB;
inline constexpr KrPixelType G12 = 0x010C00CF;
inline constexpr KrPixelType B12 = 0x010C00D3;
inline constexpr KrPixelType R16 = 0x011000CC;
inline constexpr KrPixelType G16 = 0x011000D0;
inline constexpr KrPixelType B16 = 0x011000D4;
/// @}

/// @name Luma and chroma by the names of GigE Vision 1.x
/// @{

/// The code that has this name.
inline constexpr KrPixelType YUV411_8_UYYVYY = 0x020C001E;
inline constexpr KrPixelType YUV422_8_UYVY = 0x0210001F;
inline constexpr KrPixelType YUV422_8 = 0x02100032;
inline constexpr KrPixelType YUV8_UYV = 0x02180020;
/// @}

/// @name Luma and chroma
/// @{

/// The code that has this name.
inline constexpr KrPixelType YCbCr411_8_CbYYCrYY = 0x020C003C;
inline constexpr KrPixelType YCbCr601_411_8_CbYYCrYY = 0x020C003F;
inline constexpr KrPixelType YCbCr709_411_8_CbYYCrYY = 0x020C0042;
inline constexpr KrPixelType YCbCr411_8 = 0x020C005A;
inline constexpr KrPixelType YCbCr420_8_YY_CbCr_Semiplanar = 0x020C0112;
inline constexpr KrPixelType YCbCr420_8_YY_CrCb_Semiplanar = 0x020C0114;
inline constexpr KrPixelType YCbCr422_8 = 0x0210003B;
inline constexpr KrPixelType YCbCr601_422_8 = 0x0210003E;
inline constexpr KrPixelType YCbCr709_422_8 = 0x02100041;
inline constexpr KrPixelType YCbCr422_8_CbYCrY = 0x02100043;
inline constexpr KrPixelType YCbCr601_422_8_CbYCrY = 0x02100044;
inline constexpr KrPixelType YCbCr709_422_8_CbYCrY = 0x02100045;
inline constexpr KrPixelType YCbCr422_8_YY_CbCr_Semiplanar = 0x02100113;
inline constexpr KrPixelType YCbCr422_8_YY_CrCb_Semiplanar = 0x02100115;
inline constexpr KrPixelType YCbCr8_CbYCr = 0x0218003A;
inline constexpr KrPixelType YCbCr601_8_CbYCr = 0x0218003D;
inline constexpr KrPixelType YCbCr709_8_CbYCr = 0x02180040;
inline constexpr KrPixelType YCbCr8 = 0x0218005B;
inline constexpr KrPixelType YCbCr422_10 = 0x02200065;
inline constexpr KrPixelType YCbCr422_12 = 0x02200066;
/// @}

/// @name Two colours in turns
/// @{

/// The code that has this name.
inline constexpr KrPixelType BiColorRGBG8 = 0x021000A5;
inline constexpr KrPixelType BiColorBGRG8 = 0x021000A6;
inline constexpr KrPixelType BiColorRGBG10p = 0x021400A8;
inline constexpr KrPixelType BiColorBGRG10p = 0x021400AA;
inline constexpr KrPixelType BiColorRGBG12p = 0x021800AC;
inline constexpr KrPixelType BiColorBGRG12p = 0x021800AE;
inline constexpr KrPixelType BiColorRGBG10 = 0x022000A7;
inline constexpr KrPixelType BiColorBGRG10 = 0x022000A9;
inline constexpr KrPixelType BiColorRGBG12 = 0x022000AB;
inline constexpr KrPixelType BiColorBGRG12 = 0x022000AD;
/// @}

/// @name Coordinates
/// @{

/// The code that has this name.
inline constexpr KrPixelType Coord3D_A8 = 0x010800AF;
inline constexpr KrPixelType Coord3D_B8 = 0x010800B0;
inline constexpr KrPixelType Coord3D_C8 = 0x010800B1;
inline constexpr KrPixelType Coord3D_A10p = 0x010A00D5;
inline constexpr KrPixelType Coord3D_B10p = 0x010A00D6;
inline constexpr KrPixelType Coord3D_C10p = 0x010A00D7;
inline constexpr KrPixelType Coord3D_A12p = 0x010C00D8;
inline constexpr KrPixelType Coord3D_B12p = 0x010C00D9;
inline constexpr KrPixelType Coord3D_C12p = 0x010C00DA;
inline constexpr KrPixelType Coord3D_A16 = 0x011000B6;
inline constexpr KrPixelType Coord3D_B16 = 0x011000B7;
inline constexpr KrPixelType Coord3D_C16 = 0x011000B8;
inline constexpr KrPixelType Coord3D_A32f = 0x012000BD;
inline constexpr KrPixelType Coord3D_B32f = 0x012000BE;
inline constexpr KrPixelType Coord3D_C32f = 0x012000BF;
inline constexpr KrPixelType Coord3D_AC8 = 0x021000B4;
inline constexpr KrPixelType Coord3D_AC8_Planar = 0x021000B5;
inline constexpr KrPixelType Coord3D_AC10p = 0x021400F0;
inline constexpr KrPixelType Coord3D_AC10p_Planar = 0x021400F1;
inline constexpr KrPixelType Coord3D_ABC8 = 0x021800B2;
inline constexpr KrPixelType Coord3D_ABC8_Planar = 0x021800B3;
inline constexpr KrPixelType Coord3D_AC12p = 0x021800F2;
inline constexpr KrPixelType Coord3D_AC12p_Planar = 0x021800F3;
inline constexpr KrPixelType Coord3D_ABC10p = 0x021E00DB;
inline constexpr KrPixelType Coord3D_ABC10p_Planar = 0x021E00DC;
inline constexpr KrPixelType Coord3D_AC16 = 0x022000BB;
inline constexpr KrPixelType Coord3D_AC16_Planar = 0x022000BC;
inline constexpr KrPixelType Coord3D_ABC12p = 0x022400DE;
inline constexpr KrPixelType Coord3D_ABC12p_Planar = 0x022400DF;
inline constexpr KrPixelType Coord3D_ABC16 = 0x023000B9;
inline constexpr KrPixelType Coord3D_ABC16_Planar = 0x023000BA;
inline constexpr KrPixelType Coord3D_AC32f = 0x024000C2;
inline constexpr KrPixelType Coord3D_AC32f_Planar = 0x024000C3;
inline constexpr KrPixelType Coord3D_ABC32f = 0x026000C0;
inline constexpr KrPixelType Coord3D_ABC32f_Planar = 0x026000C1;
/// @}

/// @name How sure a coordinate is
/// @{

/// The code that has this name.
inline constexpr KrPixelType Confidence1p = 0x010100C5;
inline constexpr KrPixelType Confidence1 = 0x010800C4;
inline constexpr KrPixelType Confidence8 = 0x010800C6;
inline constexpr KrPixelType Confidence16 = 0x011000C7;
inline constexpr KrPixelType Confidence32f = 0x012000C8;
/// @}

/// @name Values of no particular meaning
/// @{

/// The code that has this name.
inline constexpr KrPixelType Data8 = 0x01080116;
inline constexpr KrPixelType Data8s = 0x01080117;
inline constexpr KrPixelType Data16 = 0x01100118;
inline constexpr KrPixelType Data16s = 0x01100119;
inline constexpr KrPixelType Data32 = 0x0120011A;
inline constexpr KrPixelType Data32s = 0x0120011B;
inline constexpr KrPixelType Data32f = 0x0120011C;
inline constexpr KrPixelType Data64 = 0x0140011D;
inline constexpr KrPixelType Data64s = 0x0140011E;
inline constexpr KrPixelType Data64f = 0x0140011F;
/// @}
} // namespace KrPixel

#pragma once
// The text of the simulated cameras' descriptions. Names between two $ signs stand for what differs from camera to
// camera and for the registers' addresses, which are fixed in one place for camera and description.

#include <array>
#include <string_view>

namespace krtransport {

inline constexpr std::string_view kDescriptionHead = R"xml(<?xml version="1.0" encoding="utf-8"?>
<RegisterDescription ModelName="$ModelID$" VendorName="$VendorID$" ToolTip="Features of a simulated camera"
    StandardNameSpace="GEV" SchemaMajorVersion="1" SchemaMinorVersion="1" SchemaSubMinorVersion="0"
    MajorVersion="1" MinorVersion="0" SubMinorVersion="0"
    ProductGuid="5A1E6C1B-7D0F-4B55-9C1C-3E2F6A7B8D01" VersionGuid="5A1E6C1B-7D0F-4B55-9C1C-3E2F6A7B8D02"
    xmlns="http://www.genicam.org/GenApi/Version_1_1">
  <Category Name="Root" NameSpace="Standard">
    <pFeature>DeviceControl</pFeature>
    <pFeature>ImageFormatControl</pFeature>
    <pFeature>AcquisitionControl</pFeature>
    <pFeature>AnalogControl</pFeature>
    <pFeature>TransportLayerControl</pFeature>
  </Category>
  <Port Name="Device" NameSpace="Standard"/>
)xml";

inline constexpr std::string_view kDescriptionDevice = R"xml(
  <Category Name="DeviceControl" NameSpace="Standard">
    <ToolTip>What the camera is.</ToolTip>
    <DisplayName>Device Control</DisplayName>
    <pFeature>DeviceVendorName</pFeature>
    <pFeature>DeviceModelName</pFeature>
    <pFeature>DeviceManufacturerInfo</pFeature>
    <pFeature>DeviceVersion</pFeature>
    <pFeature>DeviceSerialNumber</pFeature>
    <pFeature>DeviceUserID</pFeature>
  </Category>
  <StringReg Name="DeviceVendorName" NameSpace="Standard">
    <ToolTip>The camera's maker.</ToolTip>
    <DisplayName>Device Vendor Name</DisplayName>
    <Address>$ManufacturerName$</Address>
    <Length>32</Length>
    <AccessMode>RO</AccessMode>
    <pPort>Device</pPort>
  </StringReg>
  <StringReg Name="DeviceModelName" NameSpace="Standard">
    <ToolTip>The camera's model.</ToolTip>
    <DisplayName>Device Model Name</DisplayName>
    <Address>$ModelName$</Address>
    <Length>32</Length>
    <AccessMode>RO</AccessMode>
    <pPort>Device</pPort>
  </StringReg>
  <StringReg Name="DeviceManufacturerInfo" NameSpace="Standard">
    <ToolTip>What the maker says besides.</ToolTip>
    <DisplayName>Device Manufacturer Info</DisplayName>
    <Visibility>Expert</Visibility>
    <Address>$ManufacturerInfo$</Address>
    <Length>48</Length>
    <AccessMode>RO</AccessMode>
    <pPort>Device</pPort>
  </StringReg>
  <StringReg Name="DeviceVersion" NameSpace="Standard">
    <ToolTip>The version of the camera.</ToolTip>
    <DisplayName>Device Version</DisplayName>
    <Address>$DeviceVersion$</Address>
    <Length>32</Length>
    <AccessMode>RO</AccessMode>
    <pPort>Device</pPort>
  </StringReg>
  <StringReg Name="DeviceSerialNumber" NameSpace="Standard">
    <ToolTip>The number of this one camera.</ToolTip>
    <DisplayName>Device Serial Number</DisplayName>
    <Visibility>Expert</Visibility>
    <Address>$SerialNumber$</Address>
    <Length>16</Length>
    <AccessMode>RO</AccessMode>
    <pPort>Device</pPort>
  </StringReg>
  <StringReg Name="DeviceUserID" NameSpace="Standard">
    <ToolTip>The name that the user gave to the camera, up to 16 bytes.</ToolTip>
    <DisplayName>Device User ID</DisplayName>
    <Streamable>Yes</Streamable>
    <Address>$UserDefinedName$</Address>
    <Length>16</Length>
    <AccessMode>RW</AccessMode>
    <pPort>Device</pPort>
  </StringReg>
)xml";

inline constexpr std::string_view kDescriptionImageFormat = R"xml(
  <Category Name="ImageFormatControl" NameSpace="Standard">
    <ToolTip>Size and format of the image.</ToolTip>
    <DisplayName>Image Format Control</DisplayName>
    <pFeature>WidthMax</pFeature>
    <pFeature>HeightMax</pFeature>
    <pFeature>Width</pFeature>
    <pFeature>Height</pFeature>
    <pFeature>PixelFormat</pFeature>
    <pFeature>TestPattern</pFeature>
  </Category>
  <IntReg Name="WidthMax" NameSpace="Standard">
    <ToolTip>The largest width in pixels.</ToolTip>
    <DisplayName>Width Max</DisplayName>
    <Visibility>Expert</Visibility>
    <Address>$WidthMax$</Address>
    <Length>4</Length>
    <AccessMode>RO</AccessMode>
    <pPort>Device</pPort>
    <Sign>Unsigned</Sign>
    <Endianess>BigEndian</Endianess>
  </IntReg>
  <IntReg Name="HeightMax" NameSpace="Standard">
    <ToolTip>The largest height in lines.</ToolTip>
    <DisplayName>Height Max</DisplayName>
    <Visibility>Expert</Visibility>
    <Address>$HeightMax$</Address>
    <Length>4</Length>
    <AccessMode>RO</AccessMode>
    <pPort>Device</pPort>
    <Sign>Unsigned</Sign>
    <Endianess>BigEndian</Endianess>
  </IntReg>
  <Integer Name="Width" NameSpace="Standard">
    <ToolTip>The image's width in pixels.</ToolTip>
    <pIsLocked>TLParamsLocked</pIsLocked>
    <Streamable>Yes</Streamable>
    <pValue>WidthReg</pValue>
    <Min>$WidthMin$</Min>
    <pMax>WidthMax</pMax>
    <Inc>$WidthIncrement$</Inc>
  </Integer>
  <IntReg Name="WidthReg">
    <Address>$Width$</Address>
    <Length>4</Length>
    <AccessMode>RW</AccessMode>
    <pPort>Device</pPort>
    <Sign>Unsigned</Sign>
    <Endianess>BigEndian</Endianess>
  </IntReg>
  <Integer Name="Height" NameSpace="Standard">
    <ToolTip>The image's height in lines.</ToolTip>
    <pIsLocked>TLParamsLocked</pIsLocked>
    <Streamable>Yes</Streamable>
    <pValue>HeightReg</pValue>
    <Min>$HeightMin$</Min>
    <pMax>HeightMax</pMax>
    <Inc>$HeightIncrement$</Inc>
  </Integer>
  <IntReg Name="HeightReg">
    <Address>$Height$</Address>
    <Length>4</Length>
    <AccessMode>RW</AccessMode>
    <pPort>Device</pPort>
    <Sign>Unsigned</Sign>
    <Endianess>BigEndian</Endianess>
  </IntReg>
  <Enumeration Name="PixelFormat" NameSpace="Standard">
    <ToolTip>How a pixel is stored.</ToolTip>
    <DisplayName>Pixel Format</DisplayName>
    <pIsLocked>TLParamsLocked</pIsLocked>
    <Streamable>Yes</Streamable>
$PixelFormatEntries$    <pValue>PixelFormatReg</pValue>
  </Enumeration>
  <IntReg Name="PixelFormatReg">
    <Address>$PixelFormat$</Address>
    <Length>4</Length>
    <AccessMode>RW</AccessMode>
    <pPort>Device</pPort>
    <Sign>Unsigned</Sign>
    <Endianess>BigEndian</Endianess>
  </IntReg>
  <Enumeration Name="TestPattern" NameSpace="Standard">
    <ToolTip>The picture that the camera makes.</ToolTip>
    <DisplayName>Test Pattern</DisplayName>
    <Streamable>Yes</Streamable>
    <EnumEntry Name="GreyDiagonalRampMoving">
      <ToolTip>A diagonal ramp that moves by one pixel with each frame.</ToolTip>
      <DisplayName>Grey Diagonal Ramp Moving</DisplayName>
      <Value>0</Value>
    </EnumEntry>
    <EnumEntry Name="GreyDiagonalRamp">
      <ToolTip>A diagonal ramp that stands still.</ToolTip>
      <DisplayName>Grey Diagonal Ramp</DisplayName>
      <Value>1</Value>
    </EnumEntry>
    <EnumEntry Name="FrameCounter" NameSpace="Standard">
      <ToolTip>The frame's number as black and white blocks over a diagonal ramp.</ToolTip>
      <DisplayName>Frame Counter</DisplayName>
      <Value>2</Value>
    </EnumEntry>
    <pValue>TestPatternReg</pValue>
  </Enumeration>
  <IntReg Name="TestPatternReg">
    <Address>$TestPattern$</Address>
    <Length>4</Length>
    <AccessMode>RW</AccessMode>
    <pPort>Device</pPort>
    <Sign>Unsigned</Sign>
    <Endianess>BigEndian</Endianess>
  </IntReg>
)xml";

inline constexpr std::string_view kDescriptionAcquisition = R"xml(
  <Category Name="AcquisitionControl" NameSpace="Standard">
    <ToolTip>When frames are taken.</ToolTip>
    <DisplayName>Acquisition Control</DisplayName>
    <pFeature>AcquisitionMode</pFeature>
    <pFeature>AcquisitionStart</pFeature>
    <pFeature>AcquisitionStop</pFeature>
    <pFeature>AcquisitionFrameRate</pFeature>
    <pFeature>ExposureTime</pFeature>
  </Category>
  <Enumeration Name="AcquisitionMode" NameSpace="Standard">
    <ToolTip>How many frames one start of acquisition gives.</ToolTip>
    <DisplayName>Acquisition Mode</DisplayName>
    <pIsLocked>TLParamsLocked</pIsLocked>
    <Streamable>Yes</Streamable>
    <EnumEntry Name="Continuous" NameSpace="Standard">
      <ToolTip>Frames until acquisition is stopped.</ToolTip>
      <Value>0</Value>
    </EnumEntry>
    <EnumEntry Name="SingleFrame" NameSpace="Standard">
      <ToolTip>One frame.</ToolTip>
      <DisplayName>Single Frame</DisplayName>
      <Value>1</Value>
    </EnumEntry>
    <pValue>AcquisitionModeReg</pValue>
  </Enumeration>
  <IntReg Name="AcquisitionModeReg">
    <Address>$AcquisitionMode$</Address>
    <Length>4</Length>
    <AccessMode>RW</AccessMode>
    <pPort>Device</pPort>
    <Sign>Unsigned</Sign>
    <Endianess>BigEndian</Endianess>
  </IntReg>
  <Command Name="AcquisitionStart" NameSpace="Standard">
    <ToolTip>Starts to take frames.</ToolTip>
    <DisplayName>Acquisition Start</DisplayName>
    <pValue>AcquisitionStartReg</pValue>
    <CommandValue>1</CommandValue>
  </Command>
  <IntReg Name="AcquisitionStartReg">
    <Address>$AcquisitionStart$</Address>
    <Length>4</Length>
    <AccessMode>WO</AccessMode>
    <pPort>Device</pPort>
    <Sign>Unsigned</Sign>
    <Endianess>BigEndian</Endianess>
  </IntReg>
  <Command Name="AcquisitionStop" NameSpace="Standard">
    <ToolTip>Stops to take frames.</ToolTip>
    <DisplayName>Acquisition Stop</DisplayName>
    <pValue>AcquisitionStopReg</pValue>
    <CommandValue>1</CommandValue>
  </Command>
  <IntReg Name="AcquisitionStopReg">
    <Address>$AcquisitionStop$</Address>
    <Length>4</Length>
    <AccessMode>WO</AccessMode>
    <pPort>Device</pPort>
    <Sign>Unsigned</Sign>
    <Endianess>BigEndian</Endianess>
  </IntReg>
  <Float Name="AcquisitionFrameRate" NameSpace="Standard">
    <ToolTip>Frames per second, as far as the exposure time allows.</ToolTip>
    <DisplayName>Acquisition Frame Rate</DisplayName>
    <Streamable>Yes</Streamable>
    <pValue>AcquisitionFrameRateReg</pValue>
    <Min>$FrameRateMin$</Min>
    <Max>$FrameRateMax$</Max>
    <Unit>Hz</Unit>
    <Representation>Linear</Representation>
  </Float>
  <FloatReg Name="AcquisitionFrameRateReg">
    <Address>$AcquisitionFrameRate$</Address>
    <Length>8</Length>
    <AccessMode>RW</AccessMode>
    <pPort>Device</pPort>
    <Endianess>BigEndian</Endianess>
  </FloatReg>
  <Float Name="ExposureTime" NameSpace="Standard">
    <ToolTip>The exposure time; frames come no faster than it allows.</ToolTip>
    <DisplayName>Exposure Time</DisplayName>
    <Streamable>Yes</Streamable>
    <pValue>ExposureTimeReg</pValue>
    <Min>$ExposureTimeMin$</Min>
    <Max>$ExposureTimeMax$</Max>
    <Unit>us</Unit>
    <Representation>Logarithmic</Representation>
  </Float>
  <FloatReg Name="ExposureTimeReg">
    <Address>$ExposureTime$</Address>
    <Length>8</Length>
    <AccessMode>RW</AccessMode>
    <pPort>Device</pPort>
    <Endianess>BigEndian</Endianess>
  </FloatReg>
)xml";

inline constexpr std::string_view kDescriptionTail = R"xml(
  <Category Name="AnalogControl" NameSpace="Standard">
    <ToolTip>The sensor's amplifier.</ToolTip>
    <DisplayName>Analog Control</DisplayName>
    <pFeature>Gain</pFeature>
  </Category>
  <Float Name="Gain" NameSpace="Standard">
    <ToolTip>The sensor's gain; test patterns are made behind it and do not change.</ToolTip>
    <Streamable>Yes</Streamable>
    <pValue>GainReg</pValue>
    <Min>0.0</Min>
    <Max>$GainMax$</Max>
    <Unit>dB</Unit>
    <Representation>Linear</Representation>
  </Float>
  <FloatReg Name="GainReg">
    <Address>$Gain$</Address>
    <Length>8</Length>
    <AccessMode>RW</AccessMode>
    <pPort>Device</pPort>
    <Endianess>BigEndian</Endianess>
  </FloatReg>
  <Category Name="TransportLayerControl" NameSpace="Standard">
    <ToolTip>How frames travel.</ToolTip>
    <DisplayName>Transport Layer Control</DisplayName>
    <pFeature>PayloadSize</pFeature>
    <pFeature>TLParamsLocked</pFeature>
  </Category>
  <IntReg Name="PayloadSize" NameSpace="Standard">
    <ToolTip>The bytes of one frame.</ToolTip>
    <DisplayName>Payload Size</DisplayName>
    <Visibility>Expert</Visibility>
    <Address>$PayloadSize$</Address>
    <Length>4</Length>
    <AccessMode>RO</AccessMode>
    <pPort>Device</pPort>
    <pInvalidator>WidthReg</pInvalidator>
    <pInvalidator>HeightReg</pInvalidator>
    <pInvalidator>PixelFormatReg</pInvalidator>
    <Sign>Unsigned</Sign>
    <Endianess>BigEndian</Endianess>
    <Unit>B</Unit>
  </IntReg>
  <Integer Name="TLParamsLocked" NameSpace="Standard">
    <ToolTip>1 while a stream runs: what a frame's size depends on cannot be changed then.</ToolTip>
    <Visibility>Invisible</Visibility>
    <pValue>TLParamsLockedReg</pValue>
    <Min>0</Min>
    <Max>1</Max>
  </Integer>
  <IntReg Name="TLParamsLockedReg">
    <Address>$TLParamsLocked$</Address>
    <Length>4</Length>
    <AccessMode>RW</AccessMode>
    <pPort>Device</pPort>
    <Cachable>NoCache</Cachable>
    <PollingTime>500</PollingTime>
    <Sign>Unsigned</Sign>
    <Endianess>BigEndian</Endianess>
  </IntReg>
</RegisterDescription>
)xml";

inline constexpr std::array<std::string_view, 5> kDescriptionSections = {
    kDescriptionHead, kDescriptionDevice, kDescriptionImageFormat, kDescriptionAcquisition, kDescriptionTail};

} // namespace krtransport

#pragma once

#include <sstream>
#include <string>
#include <utility>
#include <vector>

/// A GenICam description for the fake camera, which delivers frames as its registers below 0x400 say. Registers from
/// 0x8000 on are plain memory to it, zero at first, so that a feature that lies there keeps what it is set to.
class CameraDescription {
public:
    using Entries = std::vector<std::pair<std::string, long>>;

    explicit CameraDescription(const Entries& pixelFormats = {{"Mono8", 0x01080001}}) {
        for (const auto& [name, address] : Entries{
                 {"Width", 0x100}, {"Height", 0x104}, {"OffsetX", 0x130}, {"OffsetY", 0x134}, {"Acquisition", 0x124}}) {
            Integer(name, address);
        }
        Choice("PixelFormat", 0x128, pixelFormats);
        Command("AcquisitionStart", 1, "Acquisition");
        Command("AcquisitionStop", 0, "Acquisition");
        Add("<IntSwissKnife Name=\"PayloadSize\"><pVariable Name=\"W\">Width</pVariable>"
            "<pVariable Name=\"H\">Height</pVariable><pVariable Name=\"F\">PixelFormatRegister</pVariable>"
            "<Formula>W * H * ((F >> 16) &amp; 255) / 8</Formula></IntSwissKnife>");
    }

    CameraDescription& Add(const std::string& xml) {
        features_ += xml + "\n";
        return *this;
    }
    CameraDescription& Integer(const std::string& name, long address) {
        return Add("<IntReg Name=\"" + name + "\">" + Register(address, 4) + "<Sign>Unsigned</Sign></IntReg>");
    }
    CameraDescription& Choice(const std::string& name, long address, const Entries& entries) {
        std::string xml = "<Enumeration Name=\"" + name + "\">";
        for (const auto& [entry, value] : entries) {
            xml += "<EnumEntry Name=\"" + entry + "\"><Value>" + std::to_string(value) + "</Value></EnumEntry>";
        }
        Integer(name + "Register", address);
        return Add(xml + "<pValue>" + name + "Register</pValue></Enumeration>");
    }
    CameraDescription& Command(const std::string& name, int value, const std::string& registerName) {
        return Add("<Command Name=\"" + name + "\"><pValue>" + registerName + "</pValue><CommandValue>" +
                   std::to_string(value) + "</CommandValue></Command>");
    }
    CameraDescription& Switch(const std::string& name, long address) {
        Integer(name + "Register", address);
        return Add("<Boolean Name=\"" + name + "\"><pValue>" + name + "Register</pValue></Boolean>");
    }
    /// A number in double precision. @param selector an integer that is added to the address; empty: none
    CameraDescription& Number(const std::string& name, long address, int min, int max,
                              const std::string& selector = "") {
        const std::string more = selector.empty() ? "" : "<pAddress>" + selector + "</pAddress>";
        Add("<FloatReg Name=\"" + name + "Register\">" + Register(address, 8) + more + "</FloatReg>");
        return Add("<Float Name=\"" + name + "\"><pValue>" + name + "Register</pValue><Min>" + std::to_string(min) +
                   "</Min><Max>" + std::to_string(max) + "</Max></Float>");
    }

    /// The standard color transformation features, off and with all values 0.
    CameraDescription& ColorTransformation() {
        Switch("ColorTransformationEnable", 0x9000);
        Choice("ColorTransformationSelector", 0x9004, {{"RGBtoRGB", 0}, {"RGBtoYUV", 1}});
        Entries entries;
        for (const std::string row : {"0", "1", "2"}) {
            entries.emplace_back("Offset" + row, 8 * static_cast<long>(entries.size()));
            for (const std::string column : {"0", "1", "2"}) {
                entries.emplace_back("Gain" + row + column, 8 * static_cast<long>(entries.size()));
            }
        }
        Choice("ColorTransformationValueSelector", 0x9008, entries);
        return Number("ColorTransformationValue", 0x9010, -256, 256, "ColorTransformationValueSelectorRegister");
    }

    std::string Xml() const {
        return "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
               "<RegisterDescription ModelName=\"Fake\" VendorName=\"Test\" StandardNameSpace=\"None\" "
               "SchemaMajorVersion=\"1\" SchemaMinorVersion=\"0\" SchemaSubMinorVersion=\"1\" MajorVersion=\"1\" "
               "MinorVersion=\"0\" SubMinorVersion=\"0\" ToolTip=\"\" ProductGuid=\"0\" VersionGuid=\"0\" "
               "xmlns=\"http://www.genicam.org/GenApi/Version_1_0\">\n"
               "<Port Name=\"Device\"/>\n<Category Name=\"Root\"></Category>\n" +
               features_ + "</RegisterDescription>\n";
    }

private:
    static std::string Register(long address, int length) {
        std::ostringstream xml;
        xml << "<Address>" << address << "</Address><Length>" << length << "</Length><AccessMode>RW</AccessMode>"
            << "<pPort>Device</pPort><Endianess>BigEndian</Endianess>";
        return xml.str();
    }

    std::string features_;
};

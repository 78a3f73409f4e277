// SPDX-License-Identifier: Apache-2.0
#include "lab/xmlSchema.h"

#include "model/CZor.h"
#include "model/TableDescriptor.h"
#include "model/XmlParser.h"

namespace Zorvane {

namespace {

// Flags aren't xs:boolean, which would allow "true": readers of the document take that for 0.
constexpr std::string_view SHARED_TYPES = R"xml(
  <xs:simpleType name="Flag">
    <xs:restriction base="xs:string">
      <xs:enumeration value="0"/>
      <xs:enumeration value="1"/>
    </xs:restriction>
  </xs:simpleType>
  <xs:simpleType name="Ipv4">
    <xs:annotation>
      <xs:documentation>An address as a number: 10.20.0.1 is 169082881.</xs:documentation>
    </xs:annotation>
    <xs:restriction base="xs:unsignedInt"/>
  </xs:simpleType>
  <xs:complexType name="Number">
    <xs:annotation>
      <xs:documentation>The number of a row; 0 is no row. fromDb tells whether the database gave it out. Where
        the number is a reference, row:of names the table of the row.</xs:documentation>
    </xs:annotation>
    <xs:simpleContent>
      <xs:extension base="xs:unsignedInt">
        <xs:attribute name="fromDb" type="Flag" default="0"/>
      </xs:extension>
    </xs:simpleContent>
  </xs:complexType>
)xml";

std::string typeName(const Field& field) {
    switch (field.kind) {
    case FieldKind::Id:
    case FieldKind::Reference:
        return "Number";
    case FieldKind::Text:
        return "xs:string";
    case FieldKind::Flag:
        return "Flag";
    case FieldKind::UInt32:
        return "xs:unsignedInt";
    case FieldKind::Ipv4:
        return "Ipv4";
    case FieldKind::Int32:
        return "xs:int";
    case FieldKind::Long:
    case FieldKind::Int64:
        return "xs:long";
    case FieldKind::Enumeration:
        return field.names->enumeration;
    case FieldKind::Binary:
        return "xs:base64Binary";
    case FieldKind::BaseFields:
        break;
    }
    return {};
}

std::string enumerationType(const EnumNames& enumeration) {
    const auto value = [](const char* name) {
        return std::string("      <xs:enumeration value=\"") + name + "\"/>\n";
    };
    std::string values = value("EMPTY");
    for (const char* name : enumeration.names)
        values += value(name);
    return std::string("  <xs:simpleType name=\"") + enumeration.enumeration +
           "\">\n    <xs:restriction base=\"xs:string\">\n" + values +
           "    </xs:restriction>\n  </xs:simpleType>\n";
}

std::string rowType(const TableDescriptor& table) {
    std::string elements;
    for (const Field& field : table.fields) {
        if (table.find(field.name) != &field)
            continue; // the name stands twice, and a reader knows the first
        elements += std::string("      <xs:element name=\"") + field.name + "\" type=\"" + typeName(field) +
                    "\" minOccurs=\"0\"";
        if (field.kind == FieldKind::Reference)
            elements += std::string(" row:of=\"") + field.target + '"';
        elements += "/>\n";
    }
    return std::string("  <xs:complexType name=\"") + table.name + "\">\n    <xs:all>\n" + elements +
           "    </xs:all>\n  </xs:complexType>\n";
}

} // namespace

std::string xmlSchema() {
    const std::string space = ZOR_XML_NAMESPACE;
    std::string text =
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
        "<xs:schema xmlns:xs=\"http://www.w3.org/2001/XMLSchema\" xmlns=\"" +
        space + "\" xmlns:row=\"" + space + ":rows\"\n    targetNamespace=\"" + space +
        "\" elementFormDefault=\"qualified\">\n  <xs:element name=\"" + ZOR_XML_ROOT +
        "\">\n    <xs:complexType>\n      <xs:choice minOccurs=\"0\" maxOccurs=\"unbounded\">\n";
    for (const VectorDescriptor& vector : allVectors())
        text +=
            std::string("        <xs:element name=\"") + vector.name + "\" type=\"" + vector.name + "\"/>\n";
    text += "      </xs:choice>\n    </xs:complexType>\n  </xs:element>\n";
    text += SHARED_TYPES;
    for (const EnumNames* enumeration : allEnumerations())
        text += enumerationType(*enumeration);
    for (const VectorDescriptor& vector : allVectors())
        text += rowType(vector.table());
    return text + "</xs:schema>\n";
}

} // namespace Zorvane

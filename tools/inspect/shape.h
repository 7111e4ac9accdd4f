// The schemas of the library as a program can walk them: each item with the names of its type, fields and children.
//
// Nothing is written down twice. The names come from the template arguments of the schemas, so that an outline and a
// message about a document say what the library itself would read.
#pragma once

#include <string_view>

#include "engine/items.h"

namespace inspect {

struct Shape {
    const Asn1Item* item;
    std::string_view type;               // "TBSCertificate"; of a building block "Integer"
    const Shape* const* children;        // as many as the item has
    const std::string_view* fieldNames;  // of a SEQUENCE: "TBSCertificate::version"; null for others
};

// "tlvforge::TBSCertificate::version" without namespaces, and without what ends the name of the function around it.
constexpr std::string_view WithoutScopes(std::string_view name, size_t parts) {
    size_t from = name.size();
    for (; parts > 0 && from != std::string_view::npos; --parts) from = name.rfind("::", from - 1);
    name.remove_prefix(from == std::string_view::npos ? name.find_first_of('&') + 1 : from + 2);
    return name;
}

template <class Type>
constexpr std::string_view TypeName() {
    std::string_view name = __PRETTY_FUNCTION__;
    name.remove_prefix(name.find("Type = ") + 7);
    name = name.substr(0, name.find_first_of("<;]"));
    const size_t scope = name.rfind("::");
    return scope == std::string_view::npos ? name : name.substr(scope + 2);
}

template <auto Member>
constexpr std::string_view MemberName() {
    std::string_view name = __PRETTY_FUNCTION__;
    name.remove_prefix(name.find("Member = ") + 9);
    name = name.substr(0, name.find_first_of(";]"));
    // The arguments of a template would hide where its name begins.
    const size_t scope = name.rfind("::");
    return name.find('<') == std::string_view::npos ? WithoutScopes(name, 2) : name.substr(scope + 2);
}

template <class Element>
struct ShapeOf {
    static const Shape value;
};

template <class Element>
inline constexpr const Shape& shapeOf = ShapeOf<Element>::value;

namespace shapes {

template <const Shape&... Children>
inline constexpr const Shape* table[] = {&Children...};

template <class... Fields>
inline constexpr std::string_view fieldNames[] = {MemberName<Fields::member>()...};

// What an element is made of. Deduced from the block that its schema derives from.
template <class Element>
constexpr Shape Leaf() {
    return {&tlvforge::itemOf<Element>, TypeName<Element>(), nullptr, nullptr};
}

template <class Element, class... Fields>
constexpr Shape Of(const tlvforge::schema::Record<Fields...>*) {
    return {&tlvforge::itemOf<Element>, TypeName<Element>(), table<ShapeOf<typename Fields::Element>::value...>,
            fieldNames<Fields...>};
}
template <class Element, uint8_t Kind, class Member>
constexpr Shape Of(const tlvforge::schema::List<Kind, Member>*) {
    return {&tlvforge::itemOf<Element>, TypeName<Element>(), table<ShapeOf<Member>::value>, nullptr};
}
template <class Element, class... Alternatives>
constexpr Shape Of(const tlvforge::schema::Choice<Alternatives...>*) {
    return {&tlvforge::itemOf<Element>, TypeName<Element>(), table<ShapeOf<Alternatives>::value...>, nullptr};
}
template <class Element, uint8_t Kind, class Node>
constexpr Shape Of(const tlvforge::schema::Primitive<Kind, Node>*) {
    return Leaf<Element>();
}

// Tagged, optional and defaulted elements are their base with another item.
template <class Element, class Block>
requires requires { typename Block::Base; }
constexpr Shape Of(const Block*) {
    using Base = typename Block::Base;
    Shape shape = Of<Base>(static_cast<const tlvforge::schema::Schema<Base>*>(nullptr));
    shape.item = &tlvforge::itemOf<Element>;
    return shape;
}

}  // namespace shapes

template <class Element>
constexpr Shape ShapeOf<Element>::value =
    shapes::Of<Element>(static_cast<const tlvforge::schema::Schema<Element>*>(nullptr));

}  // namespace inspect

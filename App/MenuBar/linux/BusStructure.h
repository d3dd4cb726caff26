#pragma once

#include <QDBusArgument>

#include <tuple>

namespace vespra {

/// What goes over the bus as a structure: `fields` ties its members, in their order there.
template <class Value>
concept BusStructure = requires(Value& value) { Value::fields(value); };

template <BusStructure Value> QDBusArgument& operator<<(QDBusArgument& argument, const Value& value)
{
    argument.beginStructure();
    std::apply([&](const auto&... fields) { (argument << ... << fields); }, Value::fields(value));
    argument.endStructure();
    return argument;
}

template <BusStructure Value> const QDBusArgument& operator>>(const QDBusArgument& argument, Value& value)
{
    argument.beginStructure();
    std::apply([&](auto&... fields) { (argument >> ... >> fields); }, Value::fields(value));
    argument.endStructure();
    return argument;
}

} // namespace vespra

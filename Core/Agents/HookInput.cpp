#include "Core/Agents/HookInput.h"

#include <nlohmann/json.hpp>

namespace vespra {

namespace {

    /// The one place that says which key goes where; nothing for any other key.
    std::optional<std::string>* memberFor(HookInput& input, std::string_view key)
    {
        constexpr std::pair<std::string_view, std::optional<std::string> HookInput::*> members[]{
            {"hook_event_name", &HookInput::hookEventName},
            {"session_id", &HookInput::sessionID},
            {"cwd", &HookInput::cwd},
            {"notification_type", &HookInput::notificationType},
            {"message", &HookInput::message},
        };
        for (const auto& [name, member] : members)
            if (name == key)
                return &(input.*member);
        return nullptr;
    }

    /// Takes the wanted texts from the top object as they go by, so that nothing else is ever stored.
    class HookInputHandler final : public nlohmann::json_sax<JSON> {
    public:
        HookInput input;
        bool isObject = false;

        bool start_object(std::size_t) override
        {
            isObject |= depth_ == 0;
            return open();
        }
        bool start_array(std::size_t) override { return open(); }
        bool end_object() override { return close(); }
        bool end_array() override { return close(); }
        bool key(std::string& name) override
        {
            if (depth_ == 1)
                wanted_ = memberFor(input, name);
            return true;
        }
        bool string(std::string& value) override
        {
            if (depth_ == 1 && wanted_)
                *wanted_ = std::move(value);
            return true;
        }
        bool null() override { return other(); }
        bool boolean(bool) override { return other(); }
        bool number_integer(JSON::number_integer_t) override { return other(); }
        bool number_unsigned(JSON::number_unsigned_t) override { return other(); }
        bool number_float(JSON::number_float_t, const std::string&) override { return other(); }
        bool binary(JSON::binary_t&) override { return other(); }
        bool parse_error(std::size_t, const std::string&, const nlohmann::detail::exception&) override { return false; }

    private:
        /// Of a key that comes twice the last value counts, whatever it is.
        bool other()
        {
            if (depth_ == 1 && wanted_)
                wanted_->reset();
            return true;
        }
        bool open()
        {
            other();
            ++depth_;
            return true;
        }
        bool close()
        {
            --depth_;
            return true;
        }

        int depth_ = 0;
        std::optional<std::string>* wanted_ = nullptr;
    };

} // namespace

std::optional<HookInput> parsedHookInput(std::string_view json)
{
    HookInputHandler handler;
    if (!JSON::sax_parse(json, &handler) || !handler.isObject)
        return {};
    return std::move(handler.input);
}

HookInput hookInput(const JSON& object)
{
    HookInput input;
    for (const auto& [key, value] : object.items())
        if (auto* member = memberFor(input, key); member && value.is_string())
            *member = value.get<std::string>();
    return input;
}

void HookInputProgress::add(std::string_view piece)
{
    for (const char c : piece)
        add(c);
}

void HookInputProgress::add(char c)
{
    if (inString_) {
        if (afterBackslash_)
            afterBackslash_ = false;
        else if (c == '\\')
            afterBackslash_ = true;
        else
            inString_ = c != '"';
    } else if (c == '"') {
        inString_ = true;
    } else if (c == '{' || c == '[') {
        ++depth_;
    } else if ((c == '}' || c == ']') && --depth_ <= 0) {
        isComplete_ = true;
    }
}

} // namespace vespra

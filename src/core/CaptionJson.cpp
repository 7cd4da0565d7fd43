#include "core/CaptionJson.h"

#include "core/UnicodeText.h"

#include "core/CaptionJsonReader.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace cuewright {

namespace {

    // ---- Writing -------------------------------------------------------------------------

    void appendIndex(std::string& path, std::size_t index)
    {
        path += '[';
        path += std::to_string(index);
        path += ']';
    }

    // Where a value sits, for the message of a value that cannot be written.
    struct Place {
        std::string_view prefix;
        std::optional<std::size_t> index;

        std::string path(std::string_view key) const
        {
            std::string result(prefix);
            if (index)
                appendIndex(result, *index);
            if (!key.empty()) {
                if (!result.empty())
                    result += '.';
                result += key;
            }
            return result;
        }
    };

    std::string joined(std::string_view prefix, std::string_view key)
    {
        if (prefix.empty())
            return std::string(key);
        return std::string(prefix) + "." + std::string(key);
    }

    [[noreturn]] void throwNonFinite(const std::string& path)
    {
        throw CaptionJsonError(CaptionJsonError::Kind::nonFiniteNumber, path,
            "The data couldn\u2019t be written because \u201C" + path + "\u201D is not a finite number.");
    }

    void appendEscapedValid(std::string& out, std::string_view text)
    {
        static constexpr char hex[] = "0123456789abcdef";
        std::size_t run = 0; // start of the bytes not yet copied
        for (std::size_t i = 0; i < text.size(); ++i) {
            const auto c = static_cast<unsigned char>(text[i]);
            if (c >= 0x20 && c != '"' && c != '\\' && c != '/')
                continue;
            out.append(text.data() + run, i - run);
            run = i + 1;
            switch (c) {
            case '"':
                out += "\\\"";
                break;
            case '\\':
                out += "\\\\";
                break;
            case '/':
                out += "\\/";
                break;
            case '\n':
                out += "\\n";
                break;
            case '\r':
                out += "\\r";
                break;
            case '\t':
                out += "\\t";
                break;
            case '\b':
                out += "\\b";
                break;
            case '\f':
                out += "\\f";
                break;
            default:
                out += "\\u00";
                out += hex[c >> 4];
                out += hex[c & 0xF];
            }
        }
        out.append(text.data() + run, text.size() - run);
    }

    void appendString(std::string& out, std::string_view text)
    {
        out += '"';
        if (UnicodeText::isValidUtf8(text)) {
            appendEscapedValid(out, text);
        } else {
            // A file must stay readable: malformed bytes become U+FFFD.
            std::string repaired;
            repaired.reserve(text.size() + 8);
            for (std::size_t pos = 0; pos < text.size();) {
                char32_t c = UnicodeText::decodeNext(text, pos);
                if (c >= 0xD800 && c <= 0xDFFF)
                    c = 0xFFFD;
                if (c < 0x80) {
                    repaired += static_cast<char>(c);
                } else if (c < 0x800) {
                    repaired += static_cast<char>(0xC0 | (c >> 6));
                    repaired += static_cast<char>(0x80 | (c & 0x3F));
                } else if (c < 0x10000) {
                    repaired += static_cast<char>(0xE0 | (c >> 12));
                    repaired += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
                    repaired += static_cast<char>(0x80 | (c & 0x3F));
                } else {
                    repaired += static_cast<char>(0xF0 | (c >> 18));
                    repaired += static_cast<char>(0x80 | ((c >> 12) & 0x3F));
                    repaired += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
                    repaired += static_cast<char>(0x80 | (c & 0x3F));
                }
            }
            appendEscapedValid(out, repaired);
        }
        out += '"';
    }

    // Returns false for a number JSON cannot hold.
    bool appendNumber(std::string& out, double value)
    {
        if (!std::isfinite(value))
            return false;
        std::array<char, 32> buffer;
        const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value);
        out.append(buffer.data(), result.ptr);
        return true;
    }

    void appendKey(std::string& out, std::string_view key, bool first = false)
    {
        if (!first)
            out += ',';
        out += '"';
        out += key;
        out += "\":";
    }

    void appendNumberField(std::string& out, std::string_view key, double value, const Place& place, bool first = false)
    {
        appendKey(out, key, first);
        if (!appendNumber(out, value))
            throwNonFinite(place.path(key));
    }

    void appendCue(std::string& out, const CaptionCue& cue, const Place& place)
    {
        out += "{\"id\":\"";
        out += cue.id.toString();
        out += '"';
        appendNumberField(out, "start", cue.start, place);
        appendNumberField(out, "end", cue.end, place);
        appendKey(out, "text");
        appendString(out, cue.text);
        if (cue.positionX)
            appendNumberField(out, "positionX", *cue.positionX, place);
        if (cue.positionY)
            appendNumberField(out, "positionY", *cue.positionY, place);
        out += '}';
    }

    void appendDocument(std::string& out, const CaptionDocument& document, std::string_view prefix)
    {
        const std::string cuesPath = joined(prefix, "cues");
        out += "{\"cues\":[";
        std::size_t index = 0;
        for (const auto& cue : document.cues) {
            if (index != 0)
                out += ',';
            appendCue(out, cue, Place { cuesPath, index });
            ++index;
        }
        out += "]}";
    }

    void appendColor(std::string& out, const RGBAColor& color, std::string_view prefix)
    {
        const Place place { prefix, std::nullopt };
        out += '{';
        appendNumberField(out, "red", color.red, place, true);
        appendNumberField(out, "green", color.green, place);
        appendNumberField(out, "blue", color.blue, place);
        appendNumberField(out, "alpha", color.alpha, place);
        out += '}';
    }

    void appendStyle(std::string& out, const CaptionStyle& style, std::string_view prefix)
    {
        const Place place { prefix, std::nullopt };
        out += "{\"fontName\":";
        appendString(out, style.fontName);
        appendNumberField(out, "fontSize", style.fontSize, place);
        appendKey(out, "textColor");
        appendColor(out, style.textColor, joined(prefix, "textColor"));
        appendKey(out, "backgroundColor");
        appendColor(out, style.backgroundColor, joined(prefix, "backgroundColor"));
        appendKey(out, "backgroundEnabled");
        out += style.backgroundEnabled ? "true" : "false";
        appendKey(out, "shadowEnabled");
        out += style.shadowEnabled ? "true" : "false";
        appendNumberField(out, "bottomMargin", style.bottomMargin, place);
        out += '}';
    }

    std::size_t estimatedSize(const CaptionDocument& document)
    {
        std::size_t size = 16;
        for (const auto& cue : document.cues)
            size += 110 + cue.text.size() + cue.text.size() / 8;
        return size;
    }

    // ---- Reading -------------------------------------------------------------------------

    enum class Node : std::uint8_t { project, document, cueArray, cue, style, color, skip };
    enum class Type : std::uint8_t { string, identifier, number, boolean, object, array };

    struct Field {
        std::string_view name;
        Type type;
        bool optional = false;
        Node child = Node::skip;
    };

    constexpr std::array projectFields {
        Field { "videoPath", Type::string },
        Field { "document", Type::object, false, Node::document },
        Field { "style", Type::object, false, Node::style },
    };
    constexpr std::array documentFields {
        Field { "cues", Type::array, false, Node::cueArray },
    };
    constexpr std::array cueFields {
        Field { "id", Type::identifier },
        Field { "start", Type::number },
        Field { "end", Type::number },
        Field { "text", Type::string },
        Field { "positionX", Type::number, true },
        Field { "positionY", Type::number, true },
    };
    constexpr std::array styleFields {
        Field { "fontName", Type::string },
        Field { "fontSize", Type::number },
        Field { "textColor", Type::object, false, Node::color },
        Field { "backgroundColor", Type::object, false, Node::color },
        Field { "backgroundEnabled", Type::boolean },
        Field { "shadowEnabled", Type::boolean },
        Field { "bottomMargin", Type::number },
    };
    constexpr std::array colorFields {
        Field { "red", Type::number },
        Field { "green", Type::number },
        Field { "blue", Type::number },
        Field { "alpha", Type::number },
    };

    std::span<const Field> fieldsOf(Node node)
    {
        switch (node) {
        case Node::project:
            return projectFields;
        case Node::document:
            return documentFields;
        case Node::cue:
            return cueFields;
        case Node::style:
            return styleFields;
        case Node::color:
            return colorFields;
        default:
            return {};
        }
    }

    std::string_view describe(Type type)
    {
        switch (type) {
        case Type::string:
        case Type::identifier:
            return "a string";
        case Type::number:
            return "a number";
        case Type::boolean:
            return "true or false";
        case Type::object:
            return "an object";
        case Type::array:
            return "an array";
        }
        return "a value";
    }

    // The values decoding fills; which of them a decode returns depends on its root.
    struct Values {
        std::string videoPath;
        std::vector<CaptionCue> cues;
        CaptionCue cue;
        CaptionStyle style;
        RGBAColor color; // the root of a colour decode
    };

    // Decodes straight from the parser's events into the values: no intermediate document
    // tree, which keeps a long project's load fast.
    class Decoder {
    public:
        Decoder(Node root, std::string_view input)
            : m_root(root)
            , m_input(input)
        {
            m_stack.reserve(8);
        }

        Values values;
        std::optional<CaptionJsonError> error;

        bool null()
        {
            if (error)
                return true;
            return scalar(std::nullopt);
        }
        bool boolean(bool value)
        {
            if (error)
                return true;
            return scalar(Type::boolean, [&](Frame& f, const Field& field) { setBool(f, field, value); });
        }
        bool number(double value)
        {
            if (error)
                return true;
            return scalar(Type::number, [&](Frame& f, const Field& field) { setNumber(f, field, value); });
        }
        bool string(std::string& value)
        {
            if (error)
                return true;
            return scalar(Type::string, [&](Frame& f, const Field& field) { return setString(f, field, value); });
        }

        bool start_object()
        {
            if (error)
                return true;
            if (m_stack.empty()) {
                push(m_root);
                return true;
            }
            Frame& top = m_stack.back();
            if (top.node == Node::skip) {
                ++top.depth;
                return true;
            }
            if (top.node == Node::cueArray) {
                push(Node::cue);
                return true;
            }
            const Field* field = currentField(top);
            if (!field) {
                push(Node::skip);
                return true;
            }
            if (field->type != Type::object)
                return fail(wrongType("an object"));
            push(field->child);
            return true;
        }

        bool start_array()
        {
            if (error)
                return true;
            if (m_stack.empty())
                return fail(typeError({}, Type::object, "an array"));
            Frame& top = m_stack.back();
            if (top.node == Node::skip) {
                ++top.depth;
                return true;
            }
            if (top.node == Node::cueArray)
                return fail(wrongType("an array"));
            const Field* field = currentField(top);
            if (!field) {
                push(Node::skip);
                return true;
            }
            if (field->type != Type::array)
                return fail(wrongType("an array"));
            push(Node::cueArray);
            values.cues.clear();
            return true;
        }

        bool key(std::string_view name)
        {
            if (error)
                return true;
            Frame& top = m_stack.back();
            if (top.node == Node::skip)
                return true;
            top.field = -1;
            const auto fields = fieldsOf(top.node);
            for (std::size_t i = 0; i < fields.size(); ++i) {
                if (fields[i].name == name) {
                    top.field = static_cast<int>(i);
                    break;
                }
            }
            return true;
        }

        bool end_object()
        {
            if (error)
                return true;
            Frame& top = m_stack.back();
            if (top.node == Node::skip)
                return leaveSkipped();
            const auto fields = fieldsOf(top.node);
            for (std::size_t i = 0; i < fields.size(); ++i) {
                if (!fields[i].optional && !(top.seen & (1u << i))) {
                    const std::string where = pathTo(fields[i].name);
                    return fail(CaptionJsonError(CaptionJsonError::Kind::missingValue, where,
                        "The data couldn\u2019t be read because \u201C" + where + "\u201D is missing."));
                }
            }
            if (top.node == Node::cue) {
                m_stack.pop_back();
                if (m_stack.empty())
                    return true;
                values.cues.push_back(std::move(values.cue));
                values.cue = CaptionCue();
                ++m_stack.back().index;
                return true;
            }
            return leave();
        }

        bool end_array()
        {
            if (error)
                return true;
            Frame& top = m_stack.back();
            if (top.node == Node::skip)
                return leaveSkipped();
            return leave();
        }

        void syntaxError(std::size_t offset, CaptionJsonReader::JsonSyntax what)
        {
            std::size_t line = 1;
            std::size_t column = 1;
            for (std::size_t i = 0; i < offset && i < m_input.size(); ++i) {
                if (m_input[i] == '\n') {
                    ++line;
                    column = 1;
                } else if ((static_cast<unsigned char>(m_input[i]) & 0xC0) != 0x80) {
                    ++column;
                }
            }
            const std::string where = "line " + std::to_string(line) + ", column " + std::to_string(column);
            std::string message;
            if (m_input.empty())
                message = "The data couldn\u2019t be read because it is empty.";
            else if (what == CaptionJsonReader::JsonSyntax::numberOutOfRange)
                message = "The data couldn\u2019t be read because the number at " + where + " is too large.";
            else
                message = "The data couldn\u2019t be read because it isn\u2019t valid JSON (" + where + ").";
            error = CaptionJsonError(CaptionJsonError::Kind::invalidJSON, {}, message);
        }

    private:
        struct Frame {
            Node node;
            int field = -1; // the key being read, -1 for an unknown one
            std::uint32_t seen = 0;
            std::size_t index = 0; // elements finished, in the cue array
            std::size_t depth = 0; // containers open inside a skipped value
            RGBAColor* color = nullptr;
        };

        const Field* currentField(const Frame& frame) const
        {
            if (frame.field < 0)
                return nullptr;
            return &fieldsOf(frame.node)[static_cast<std::size_t>(frame.field)];
        }

        void push(Node node)
        {
            Frame frame { node };
            if (node == Node::color) {
                if (m_stack.empty()) {
                    frame.color = &values.color;
                } else {
                    const Frame& parent = m_stack.back();
                    frame.color = fieldsOf(parent.node)[static_cast<std::size_t>(parent.field)].name == "textColor"
                        ? &values.style.textColor
                        : &values.style.backgroundColor;
                }
            }
            m_stack.push_back(frame);
        }

        bool leave()
        {
            m_stack.pop_back();
            if (!m_stack.empty())
                markSeen(m_stack.back());
            return true;
        }

        bool leaveSkipped()
        {
            Frame& top = m_stack.back();
            if (top.depth > 0) {
                --top.depth;
                return true;
            }
            m_stack.pop_back();
            return true;
        }

        static void markSeen(Frame& frame)
        {
            if (frame.field >= 0)
                frame.seen |= 1u << frame.field;
        }

        // A null (type absent) or a scalar of the given type for the current key.
        template <typename Store = int> bool scalar(std::optional<Type> type, Store store = {})
        {
            if (m_stack.empty())
                return fail(typeError({}, Type::object, type ? describe(*type) : "null"));
            Frame& top = m_stack.back();
            if (top.node == Node::skip)
                return true;
            if (top.node == Node::cueArray)
                return fail(typeError(pathTo({}), Type::object, type ? describe(*type) : "null"));
            const Field* field = currentField(top);
            if (!field)
                return true;
            if (!type) {
                if (!field->optional)
                    return fail(typeError(pathTo(field->name), field->type, "null"));
                clearOptional(top, *field);
                markSeen(top);
                return true;
            }
            const bool matches = *type == field->type || (*type == Type::string && field->type == Type::identifier);
            if (!matches)
                return fail(wrongType(describe(*type)));
            if constexpr (!std::is_same_v<Store, int>) {
                if constexpr (std::is_same_v<decltype(store(top, *field)), bool>) {
                    if (!store(top, *field))
                        return false;
                } else {
                    store(top, *field);
                }
            }
            markSeen(top);
            return true;
        }

        void setNumber(Frame& frame, const Field& field, double value)
        {
            const char n = field.name[0];
            switch (frame.node) {
            case Node::cue:
                if (field.name == "start")
                    values.cue.start = value;
                else if (field.name == "end")
                    values.cue.end = value;
                else if (field.name == "positionX")
                    values.cue.positionX = value;
                else
                    values.cue.positionY = value;
                break;
            case Node::style:
                if (n == 'f')
                    values.style.fontSize = value;
                else
                    values.style.bottomMargin = value;
                break;
            case Node::color:
                (n == 'r'          ? frame.color->red
                        : n == 'g' ? frame.color->green
                        : n == 'b' ? frame.color->blue
                                   : frame.color->alpha)
                    = value;
                break;
            default:
                break;
            }
        }

        void setBool(Frame& frame, const Field& field, bool value)
        {
            if (frame.node == Node::style)
                (field.name == "backgroundEnabled" ? values.style.backgroundEnabled : values.style.shadowEnabled)
                    = value;
        }

        bool setString(Frame& frame, const Field& field, std::string& value)
        {
            if (field.type == Type::identifier) {
                const auto id = Uuid::parse(value);
                if (!id) {
                    const std::string where = pathTo(field.name);
                    return fail(CaptionJsonError(CaptionJsonError::Kind::invalidIdentifier, where,
                        "The data couldn\u2019t be read because \u201C" + where + "\u201D is not a valid identifier."));
                }
                values.cue.id = *id;
                return true;
            }
            if (frame.node == Node::cue)
                values.cue.text = std::move(value);
            else if (frame.node == Node::style)
                values.style.fontName = std::move(value);
            else
                values.videoPath = std::move(value);
            return true;
        }

        void clearOptional(Frame& frame, const Field& field)
        {
            if (frame.node == Node::cue)
                (field.name == "positionX" ? values.cue.positionX : values.cue.positionY).reset();
        }

        std::string pathTo(std::string_view leaf) const
        {
            std::string path;
            auto append = [&](std::string_view name) {
                if (!path.empty())
                    path += '.';
                path += name;
            };
            for (std::size_t i = 0; i < m_stack.size(); ++i) {
                const Frame& frame = m_stack[i];
                const bool last = i + 1 == m_stack.size();
                if (frame.node == Node::cueArray) {
                    appendIndex(path, frame.index);
                } else if (!last && frame.field >= 0) {
                    append(fieldsOf(frame.node)[static_cast<std::size_t>(frame.field)].name);
                }
            }
            if (!leaf.empty())
                append(leaf);
            return path;
        }

        CaptionJsonError typeError(const std::string& where, Type expected, std::string_view found) const
        {
            const std::string subject = where.empty() ? "it" : "\u201C" + where + "\u201D";
            return CaptionJsonError(
                found == "null" ? CaptionJsonError::Kind::nullValue : CaptionJsonError::Kind::wrongType, where,
                "The data couldn\u2019t be read because " + subject + " is " + std::string(found) + " instead of "
                    + std::string(describe(expected)) + ".");
        }

        CaptionJsonError wrongType(std::string_view found) const
        {
            const Frame& top = m_stack.back();
            if (top.node == Node::cueArray)
                return typeError(pathTo({}), Type::object, found);
            const Field* field = currentField(top);
            return typeError(pathTo(field->name), field->type, found);
        }

        // Reading goes on after a fault in the values, so that malformed JSON is what gets
        // reported when the input has both.
        bool fail(CaptionJsonError e)
        {
            if (!error)
                error = std::move(e);
            return true;
        }

        Node m_root;
        std::string_view m_input;
        std::vector<Frame> m_stack;
    };

    Values decode(Node root, std::string_view json)
    {
        Decoder decoder(root, json);
        const bool ok = CaptionJsonReader::read(json, decoder);
        if (!ok || decoder.error) {
            if (decoder.error)
                throw *decoder.error;
            throw CaptionJsonError(CaptionJsonError::Kind::invalidJSON, {},
                "The data couldn\u2019t be read because it isn\u2019t valid JSON.");
        }
        return std::move(decoder.values);
    }

} // namespace

namespace CaptionJson {

    std::string encode(const CaptionCue& cue)
    {
        std::string out;
        appendCue(out, cue, Place {});
        return out;
    }

    std::string encode(const CaptionDocument& document)
    {
        std::string out;
        out.reserve(estimatedSize(document));
        appendDocument(out, document, {});
        return out;
    }

    std::string encode(const RGBAColor& color)
    {
        std::string out;
        appendColor(out, color, {});
        return out;
    }

    std::string encode(const CaptionStyle& style)
    {
        std::string out;
        appendStyle(out, style, {});
        return out;
    }

    std::string encode(const CaptionProject& project)
    {
        std::string out;
        out.reserve(estimatedSize(project.document) + project.videoPath.size() + 400);
        out += "{\"videoPath\":";
        appendString(out, project.videoPath);
        out += ",\"document\":";
        appendDocument(out, project.document, "document");
        out += ",\"style\":";
        appendStyle(out, project.style, "style");
        out += '}';
        return out;
    }

    CaptionCue decodeCue(std::string_view json)
    {
        return std::move(decode(Node::cue, json).cue);
    }

    CaptionDocument decodeDocument(std::string_view json)
    {
        return CaptionDocument::unsorted(CueList(std::move(decode(Node::document, json).cues)));
    }

    RGBAColor decodeColor(std::string_view json)
    {
        return decode(Node::color, json).color;
    }

    CaptionStyle decodeStyle(std::string_view json)
    {
        return std::move(decode(Node::style, json).style);
    }

    CaptionProject decodeProject(std::string_view json)
    {
        Values values = decode(Node::project, json);
        return CaptionProject { std::move(values.videoPath), CaptionDocument::unsorted(CueList(std::move(values.cues))),
            std::move(values.style) };
    }

} // namespace CaptionJson

} // namespace cuewright

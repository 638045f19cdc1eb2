#include "platform/sim/StateTree.h"

#include "platform/sim/StateSchema.h"

#include <algorithm>
#include <utility>

namespace sim {
namespace {

enum class Maps { Merge, Replace };

[[noreturn]] void noSuchPath(const std::string &path)
{
    throw BadRequest("no such path: " + path);
}

std::string below(const std::string &path, const std::string &key)
{
    return path.empty() ? key : path + "." + key;
}

bool isDecimal(const std::string &text)
{
    const bool plain = text.size() == 1 || (text.size() > 1 && text[0] != '0');
    return plain && text.size() <= 9 &&
           std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

const char *mapMark(const Json &shape)
{
    for (const char *mark : {"*", "#"})
        if (shape.is_object() && shape.contains(mark))
            return mark;
    return nullptr;
}

void checkKey(const char *mark, const std::string &key, const std::string &path)
{
    if (key.empty() || (*mark == '#' && !isDecimal(key)))
        throw BadRequest(path + ": must be named by a " + (*mark == '#' ? "number" : "name"));
}

Json shaped(const Json &shape, const Json &old, const Json &value, const std::string &path,
            Maps maps);

Json shapedMap(const Json &shape, const Json &old, const Json &value, const std::string &path,
               Maps maps)
{
    const char *mark = mapMark(shape);
    const Json &element = shape[mark];
    Json result = maps == Maps::Merge ? old : Json::object();
    for (const auto &[key, field] : value.items()) {
        const std::string fieldPath = below(path, key);
        checkKey(mark, key, fieldPath);
        result[key] =
            shaped(element, old.value(key, initialValue(element)), field, fieldPath, maps);
    }
    return result;
}

Json shapedRecord(const Json &shape, const Json &old, const Json &value, const std::string &path,
                  Maps maps)
{
    Json result = old;
    for (const auto &[key, field] : value.items()) {
        if (!shape.contains(key))
            noSuchPath(below(path, key));
        result[key] = shaped(shape[key], old[key], field, below(path, key), maps);
    }
    return result;
}

Json shapedList(const Json &shape, const Json &value, const std::string &path, Maps maps)
{
    if (!value.is_array())
        throw BadRequest(path + ": must be a list");
    if (shape.size() == 2 && value.size() != shape[1].get<std::size_t>())
        throw BadRequest(path + ": must be a list of " + shape[1].dump());
    Json result = Json::array();
    for (std::size_t i = 0; i < value.size(); ++i)
        result.push_back(shaped(shape[0], initialValue(shape[0]), value[i],
                                below(path, std::to_string(i)), maps));
    return result;
}

Json shapedEither(const Json &shapes, const Json &old, const Json &value, const std::string &path,
                  Maps maps)
{
    const Json &shape = value.is_object() ? shapes.back() : shapes.front();
    const bool keep = value.is_object() && old.is_object();
    return shaped(shape, keep ? old : initialValue(shape), value, path, maps);
}

Json shaped(const Json &shape, const Json &old, const Json &value, const std::string &path,
            Maps maps)
{
    if (shape.is_string()) {
        checkLeaf(shape.get<std::string>(), value, path);
        return value;
    }
    if (shape.is_array())
        return shapedList(shape, value, path, maps);
    if (shape.contains("any of"))
        return shapedEither(shape["any of"], old, value, path, maps);
    if (!value.is_object())
        throw BadRequest(path + ": must be an object");
    return mapMark(shape) ? shapedMap(shape, old, value, path, maps)
                          : shapedRecord(shape, old, value, path, maps);
}

// Walks down a path, node and shape together. With `grow` it makes the last place of an open map
// or a list where it is missing.
template <typename Node>
class Walk
{
public:
    Walk(Node &root, const std::string &path) : node(&root), m_rest(path), m_path(path) {}

    void toEnd(bool grow)
    {
        while (!m_rest.empty())
            step(grow);
    }

    Node *node;
    const Json *shape = &stateSchema();

private:
    void step(bool grow)
    {
        if (shape->is_object() && shape->contains("any of"))
            shape = &(*shape)["any of"].back();
        if (shape->is_array())
            intoList(grow);
        else if (mapMark(*shape))
            intoMap(grow);
        else
            intoRecord();
    }

    std::string takeSegment()
    {
        const auto dot = m_rest.find('.');
        std::string segment = m_rest.substr(0, dot);
        if (segment.empty() || dot + 1 == m_rest.size())
            noSuchPath(m_path);
        m_rest = dot == std::string::npos ? std::string() : m_rest.substr(dot + 1);
        return segment;
    }

    void intoRecord()
    {
        const std::string key = takeSegment();
        if (!shape->is_object() || !shape->contains(key) || !node->is_object())
            noSuchPath(m_path);
        node = &(*node)[key];
        shape = &(*shape)[key];
    }

    void intoList(bool grow)
    {
        const std::string text = takeSegment();
        const std::size_t index = isDecimal(text) ? std::stoul(text) : node->size() + 1;
        if (grow && index == node->size() && shape->size() == 1)
            append();
        if (index >= node->size())
            noSuchPath(m_path);
        node = &(*node)[index];
        shape = &(*shape)[0];
    }

    void append()
    {
        if constexpr (!std::is_const_v<Node>)
            node->push_back(initialValue((*shape)[0]));
    }

    void intoMap(bool grow)
    {
        const char *mark = mapMark(*shape);
        const std::string key = takeKey();
        if (!node->contains(key)) {
            if (!grow)
                noSuchPath(m_path);
            checkKey(mark, key, m_path);
            addKey(key, (*shape)[mark]);
        }
        node = &(*node)[key];
        shape = &(*shape)[mark];
    }

    void addKey(const std::string &key, const Json &element)
    {
        if constexpr (!std::is_const_v<Node>)
            (*node)[key] = initialValue(element);
    }

    std::string takeKey()
    {
        for (auto dot = m_rest.find('.'); dot != std::string::npos;
             dot = m_rest.find('.', dot + 1)) {
            std::string key = m_rest.substr(0, dot);
            if (node->contains(key) && dot + 1 < m_rest.size()) {
                m_rest = m_rest.substr(dot + 1);
                return key;
            }
        }
        return std::exchange(m_rest, std::string());
    }

    std::string m_rest;
    const std::string &m_path;
};

} // namespace

const Json &valueAt(const Json &state, const std::string &path)
{
    Walk<const Json> walk(state, path);
    walk.toEnd(false);
    return *walk.node;
}

void change(Json &state, const std::string &path, const Json &value)
{
    Json changed = state;
    Walk<Json> walk(changed, path);
    walk.toEnd(true);
    *walk.node = shaped(*walk.shape, *walk.node, value, path, Maps::Replace);
    state = std::move(changed);
}

void overlay(Json &state, const Json &part)
{
    state = shaped(stateSchema(), state, part, std::string(), Maps::Merge);
}

} // namespace sim

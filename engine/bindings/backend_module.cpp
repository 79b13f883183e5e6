// `vessa._backend`: the compiled backend as the engine's Python layer sees it.
// Each method converts Python values and hands over to vessa::core::Backend;
// the interface itself is written down in vessa/backend.py.
#include "facade/backend.h"
#include "models/model_reading.h"
#include "reading/formats.h"
#include "sound/sound_player.h"

#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <stdexcept>

namespace py = pybind11;
using namespace pybind11::literals;
using vessa::core::Backend;
using vessa::core::ChannelValue;

namespace {

ChannelValue toValue(const py::handle& sequence) {
    ChannelValue value{};
    if (sequence.is_none())
        return value;
    size_t i = 0;
    for (const py::handle item : sequence) {
        if (i == value.size())
            throw std::invalid_argument("a value has at most four numbers");
        value[i++] = item.cast<double>();
    }
    return value;
}

py::tuple toTuple(const ChannelValue& value, int width) {
    py::tuple tuple(static_cast<size_t>(width));
    for (int i = 0; i < width; ++i)
        tuple[static_cast<size_t>(i)] = value[static_cast<size_t>(i)];
    return tuple;
}

vessa::core::NodeValues toValues(const py::dict& values) {
    vessa::core::NodeValues result;
    for (int i = 0; i < vessa::core::kChannelCount; ++i) {
        const auto channel = static_cast<vessa::core::Channel>(i);
        const char* name = vessa::core::channelName(channel);
        result[static_cast<size_t>(i)] =
            values.contains(name) ? toValue(values[name]) : vessa::core::defaultValue(channel);
    }
    return result;
}

std::optional<int> toId(const py::object& id) {
    return id.is_none() ? std::nullopt : std::optional<int>(id.cast<int>());
}

bool isFlagStyle(const std::string& style) {
    return style == "visible" || style == "texture" || style == "shadow";
}

py::object failureOrNone(const std::string& failure) {
    return failure.empty() ? py::object(py::none()) : py::object(py::str(failure));
}

py::object pointOrNone(const std::optional<ChannelValue>& point) {
    return point ? py::object(toTuple(*point, 3)) : py::object(py::none());
}

py::dict toDict(const vessa::core::Model& model) {
    py::list parts;
    for (const auto& part : model.parts) {
        py::dict d;
        d["name"] = part.name;
        d["parent"] = part.parent < 0 ? py::object(py::none()) : py::object(py::int_(part.parent));
        d["position"] = toTuple(part.position, 3);
        d["orientation"] = toTuple(part.orientation, 4);
        d["vertices"] = part.vertices;
        d["faces"] = part.faces;
        parts.append(d);
    }
    py::dict d;
    d["name"] = model.name;
    d["parts"] = parts;
    d["files"] = model.files;
    d["missing"] = model.missing;
    return d;
}

// What each part of a model file is made of, for drawing it elsewhere:
// per part a list of meshes in the file's right-handed axes.
// A model's parts as meshes to be drawn elsewhere, and its pictures.
py::dict describedForDrawing(const vessa::core::ModelDescription& model) {
    py::list parts;
    for (const auto& part : model.parts) {
        py::list meshes;
        for (const auto& mesh : part.meshes) {
            py::dict d;
            d["positions"] = mesh.positions;
            d["normals"] = mesh.normals;
            d["colors"] = mesh.colors;
            d["texcoords"] = mesh.texCoords;
            d["triangles"] = mesh.triangles;
            d["diffuse"] = mesh.look.hasMaterial ? std::vector<float>(mesh.look.diffuse.begin(),
                                                                      mesh.look.diffuse.begin() + 3)
                                                 : std::vector<float>{1.0f, 1.0f, 1.0f};
            d["blended"] = mesh.look.blended;
            // The rest of the material, where the file gives one; vertex
            // colours stand for its ambient colour as for its diffuse.
            const auto rgb = [](const std::array<float, 4>& c) {
                return std::vector<float>(c.begin(), c.begin() + 3);
            };
            const bool own = mesh.look.hasMaterial;
            d["ambient"] = own && !mesh.look.litVertexColors ? py::cast(rgb(mesh.look.ambient))
                                                             : py::object(py::none());
            d["specular"] = own ? py::cast(rgb(mesh.look.specular)) : py::object(py::none());
            d["emission"] = own ? py::cast(rgb(mesh.look.emission)) : py::object(py::none());
            d["shininess"] =
                own ? py::object(py::float_(mesh.look.shininess)) : py::object(py::none());
            d["picture"] = mesh.look.texture >= 0 && !mesh.texCoords.empty()
                               ? py::object(py::int_(mesh.look.texture))
                               : py::object(py::none());
            meshes.append(d);
        }
        parts.append(meshes);
    }
    py::list pictures;
    for (const auto& texture : model.textures) {
        py::dict d;
        d["width"] = texture.width;
        d["height"] = texture.height;
        d["rgba"] =
            py::bytes(reinterpret_cast<const char*>(texture.rgba.data()), texture.rgba.size());
        pictures.append(d);
    }
    py::dict described;
    described["parts"] = parts;
    described["pictures"] = pictures;
    return described;
}

py::dict toDict(const vessa::core::InputEvent& event) {
    py::dict d;
    d["kind"] = event.kind;
    d["x"] = event.x;
    d["y"] = event.y;
    d["node"] = event.node ? py::object(py::int_(*event.node)) : py::object(py::none());
    d["point"] = pointOrNone(event.point);
    d["ray"] = py::make_tuple(toTuple(event.rayOrigin, 3), toTuple(event.rayDirection, 3));
    d["wheel"] = event.wheelSteps;
    d["key"] = event.key;
    d["rawkey"] = event.rawkey;
    d["shift"] = event.shift;
    d["control"] = event.control;
    return d;
}

} // namespace

PYBIND11_MODULE(_backend, m) {
    m.doc() = "The compiled backend of the Vessa47 engine: scene graph, tweens and drawing.";
    py::register_exception<std::out_of_range>(m, "UnknownNode", PyExc_KeyError);
    py::register_exception<vessa::core::ModelError>(m, "ModelError", PyExc_ValueError);

    py::class_<Backend>(m, "Backend")
        .def(py::init<>())
        .def(
            "add_node",
            [](Backend& b, int id, const py::dict& values, const std::string& kind) {
                b.addNode(id, toValues(values), kind);
            },
            "node_id"_a, "values"_a, "kind"_a = "model")
        .def("remove_node", &Backend::removeNode, "node_id"_a)
        .def(
            "get",
            [](const Backend& b, int id, const std::string& channel) {
                return toTuple(b.get(id, channel),
                               vessa::core::channelWidth(vessa::core::channelFromName(channel)));
            },
            "node_id"_a, "channel"_a)
        .def(
            "set",
            [](Backend& b, int id, const std::string& channel, const py::object& value) {
                b.set(id, channel, toValue(value));
            },
            "node_id"_a, "channel"_a, "value"_a)
        .def(
            "set_parent",
            [](Backend& b, int id, const py::object& parent) { b.setParent(id, toId(parent)); },
            "node_id"_a, "parent_id"_a)
        .def(
            "get_style",
            [](const Backend& b, int id, const std::string& style) -> py::object {
                return std::visit([](const auto& v) -> py::object { return py::cast(v); },
                                  b.getStyle(id, style));
            },
            "node_id"_a, "style"_a)
        .def(
            "set_style",
            [](Backend& b, int id, const std::string& style, const py::object& value) {
                if (isFlagStyle(style))
                    b.setStyle(id, style, py::bool_(value).cast<bool>());
                else
                    b.setStyle(id, style, py::str(value).cast<std::string>());
            },
            "node_id"_a, "style"_a, "value"_a)
        .def(
            "add_tween",
            [](Backend& b, const py::object& node, const py::object& channel,
               const py::object& delta, double start, double duration, const py::object& style) {
                return b.addTween(toId(node), channel.is_none() ? "" : channel.cast<std::string>(),
                                  toValue(delta), start, duration, py::str(style));
            },
            "node_id"_a, "channel"_a, "delta"_a, "start"_a, "duration"_a, "style"_a)
        .def("cancel", &Backend::cancel, "tween_id"_a)
        .def("step", &Backend::step, "now"_a)
        .def("tween_count", &Backend::tweenCount)
        .def(
            "open_view",
            [](Backend& b, int width, int height, long long host) {
                return failureOrNone(b.view().open(width, height, host));
            },
            "width"_a, "height"_a, "host_id"_a)
        .def(
            "move_view",
            [](Backend& b, long long host) { return failureOrNone(b.view().moveTo(host)); },
            "host_id"_a)
        .def(
            "resize_view",
            [](Backend& b, int width, int height) { b.view().resize(width, height); }, "width"_a,
            "height"_a)
        .def("close_view", [](Backend& b) { b.view().close(); })
        .def("focus_view", [](Backend& b) { return failureOrNone(b.view().focus()); })
        .def("check_drawing", [](const Backend&) { return vessa::core::ViewHost::checkOpenGL(); })
        .def("hardware_accelerated",
             [](const Backend&) { return vessa::core::ViewHost::hardwareAccelerated(); })
        .def(
            "set_acceleration",
            [](Backend& b, bool on) { return failureOrNone(b.view().setHighQuality(on)); }, "on"_a)
        .def("frames_per_second", [](const Backend& b) { return b.view().framesPerSecond(); })
        .def(
            "save_picture",
            [](Backend& b, const std::string& path, int width, int height) {
                return failureOrNone(b.view().savePicture(path, width, height));
            },
            "path"_a, "width"_a = 0, "height"_a = 0)
        .def("screen_size", [](const Backend&) { return vessa::core::ViewHost::screenSize(); })
        .def("poll_input",
             [](Backend& b) {
                 py::list events;
                 for (const auto& event : b.takeInput())
                     events.append(toDict(event));
                 return events;
             })
        .def("input_waiting", &Backend::inputWaiting)
        .def(
            "bounds",
            [](const Backend& b, int id) -> py::object {
                const auto box = b.bounds(id);
                if (!box)
                    return py::none();
                return py::make_tuple(toTuple(box->first, 3), toTuple(box->second, 3));
            },
            "node_id"_a)
        .def(
            "first_hit",
            [](const Backend& b, const py::object& origin, const py::object& direction,
               double maxDistance) {
                return b.firstHit(toValue(origin), toValue(direction), maxDistance);
            },
            "origin"_a, "direction"_a, "max_distance"_a)
        .def(
            "load_model",
            [](Backend& b, const std::string& path) { return toDict(*b.models().load(path)); },
            "path"_a)
        .def(
            "describe_model",
            [](const Backend&, const std::string& path) {
                return describedForDrawing(
                    vessa::core::readDescription(path, vessa::core::ReaderProcess::shared()));
            },
            "path"_a)
        .def("model_formats",
             [](const Backend&) {
                 return std::vector<std::string>(vessa::core::kModelFormats.begin(),
                                                 vessa::core::kModelFormats.end());
             })
        .def(
            "store_model",
            [](Backend& b, const std::string& path, const py::list& parts) {
                std::vector<vessa::core::StoredPart> stored;
                for (const py::handle part : parts) {
                    const auto item = part.cast<py::sequence>();
                    const py::object parent = item[2];
                    stored.push_back({item[0].cast<int>(), item[1].cast<std::string>(),
                                      parent.is_none() ? -1 : parent.cast<int>()});
                }
                b.models().store(b.scene(), stored, path);
            },
            "path"_a, "parts"_a)
        .def("start_sound", [](Backend&) { vessa::core::SoundPlayer::shared(); })
        .def(
            "load_sound",
            [](Backend&, const std::string& path) {
                return failureOrNone(vessa::core::SoundPlayer::shared().check(path));
            },
            "path"_a)
        .def(
            "play_sound",
            [](Backend&, const std::string& path, double volume) {
                return failureOrNone(vessa::core::SoundPlayer::shared().play(path, volume));
            },
            "path"_a, "volume"_a = 1.0);
}

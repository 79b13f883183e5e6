#include "models/model_library.h"

#include "models/lighter_shape.h"
#include "models/model_reading.h"
#include "models/shapes.h"
#include "models/whole_shape.h"
#include "scene/engine_frame.h"
#include "scene/scene_graph.h"

#include <osg/MatrixTransform>
#include <osgDB/Registry>

#include <fstream>
#include <limits>

namespace vessa::core {

namespace {

constexpr std::string_view kTextModel = "text:";
constexpr char kPartMark = '#';
// The whole object's light copies, by how many pixels across it is on screen
// and how many cells across their grid has: each cell stays within a few
// pixels.
constexpr std::pair<float, int> kWholeObjectLevels[] = {{30.0f, 7}, {100.0f, 14}};

// An object of a single mesh gains nothing by being drawn whole.
std::shared_ptr<const WholeObject> wholeObjectOf(const Model& model, const std::string& path) {
    const MergedShape merged = wholeShape(model);
    if (merged.meshes < 2)
        return nullptr;
    auto whole = std::make_shared<WholeObject>();
    for (const auto& [pixels, cells] : kWholeObjectLevels)
        whole->levels.push_back({pixels, lighterShape(merged.geode.get(), cells).shape});
    for (size_t k = 0; k < model.parts.size(); ++k) {
        const ModelPart& part = model.parts[k];
        whole->parts.push_back({part.parent, part.position, part.orientation});
        whole->partOf[path + kPartMark + std::to_string(k)] = static_cast<int>(k);
    }
    return whole;
}

} // namespace

ModelLibrary::ModelLibrary(ReaderProcess& reader) : reader_(reader) {
}

std::shared_ptr<const Model> ModelLibrary::load(const std::string& path) {
    const auto stamp = stampOf(path);
    auto found = read_.find(path);
    if (!stamp || found == read_.end() || !(found->second.stamp == *stamp)) {
        Entry entry{stamp.value_or(FileStamp{}), nullptr, nullptr, {}};
        try {
            entry.model = std::make_shared<const Model>(readModel(path, reader_));
            entry.whole = wholeObjectOf(*entry.model, path);
        } catch (const ModelError& refused) {
            entry.failure = refused.what();
        }
        found = read_.insert_or_assign(path, std::move(entry)).first;
    }
    if (!found->second.model)
        throw ModelError(found->second.failure);
    return found->second.model;
}

std::optional<std::pair<std::string, size_t>> ModelLibrary::filePart(const std::string& model) {
    if (model.empty() || model.starts_with(kTextModel))
        return std::nullopt;
    const auto mark = model.rfind(kPartMark);
    size_t part = 0;
    if (mark != std::string::npos) {
        try {
            part = std::stoul(model.substr(mark + 1));
        } catch (const std::logic_error&) {
            part = std::numeric_limits<size_t>::max(); // no part of any file
        }
    }
    return std::pair(model.substr(0, mark), part);
}

osg::Node* ModelLibrary::shapeFor(const std::string& model) {
    if (model.empty())
        return unitBox();
    if (model.starts_with(kTextModel))
        return textShape(model.substr(kTextModel.size()));
    const auto [file, part] = *filePart(model);
    try {
        const auto loaded = load(file);
        return part < loaded->parts.size() ? loaded->parts[part].shape.get() : nullptr;
    } catch (const ModelError&) {
        return nullptr; // a file gone since: the object stays, unseen
    }
}

std::shared_ptr<const WholeObject> ModelLibrary::wholeFor(const std::string& model) {
    const auto named = filePart(model);
    if (!named || named->second != 0)
        return nullptr;
    try {
        load(named->first);
    } catch (const ModelError&) {
        return nullptr;
    }
    return read_.at(named->first).whole;
}

void ModelLibrary::store(const SceneGraph& scene, const std::vector<StoredPart>& parts,
                         const std::string& path) const {
    std::vector<osg::ref_ptr<osg::Group>> built;
    for (const StoredPart& part : parts) {
        osg::ref_ptr<osg::Group> group;
        if (part.parent < 0 || static_cast<size_t>(part.parent) >= built.size()) {
            group = new osg::Group;
        } else {
            group = new osg::MatrixTransform(
                osg::Matrixd::rotate(toOsgRotation(scene.get(part.node, Channel::Orientation))) *
                osg::Matrixd::translate(toOsgPoint(scene.get(part.node, Channel::Position))));
            group->setDataVariance(osg::Object::DYNAMIC);
            built[static_cast<size_t>(part.parent)]->addChild(group);
        }
        group->setName(part.name);
        if (osg::Node* shape = scene.shape(part.node)) {
            const ChannelValue size = scene.get(part.node, Channel::Size);
            auto* sized = new osg::MatrixTransform(osg::Matrixd::scale(size[0], size[1], size[2]));
            sized->addChild(fullDetail(shape));
            group->addChild(sized);
        }
        built.push_back(group);
    }
    if (built.empty())
        throw ModelError("There is nothing to store");
    osgDB::ReaderWriter* osgb = osgDB::Registry::instance()->getReaderWriterForExtension("osgb");
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    osg::ref_ptr<osgDB::Options> options = new osgDB::Options("WriteImageHint=IncludeData");
    if (!osgb || !out || !osgb->writeNode(*built.front(), out, options.get()).success() ||
        !out.flush())
        throw ModelError("The object could not be written to " + path);
}

} // namespace vessa::core

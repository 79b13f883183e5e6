#include "models/shapes.h"

#include <osg/Geode>
#include <osg/ShapeDrawable>
#include <osgText/Font3D>
#include <osgText/Text3D>

namespace vessa::core {

namespace {

constexpr const char* kFontFile = "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf";
constexpr float kLetterHeight = 1.0f;
constexpr float kLetterDepth = 0.2f;

osgText::Font* textFont() {
    static osg::ref_ptr<osgText::Font> font = osgText::readRefFont3DFile(kFontFile);
    return font.get();
}

} // namespace

osg::Node* unitBox() {
    static osg::ref_ptr<osg::Geode> box = [] {
        auto* drawable = new osg::ShapeDrawable(new osg::Box(osg::Vec3(), 1.0f));
        drawable->setColor(osg::Vec4(1.0f, 1.0f, 1.0f, 1.0f));
        osg::ref_ptr<osg::Geode> geode = new osg::Geode;
        geode->addDrawable(drawable);
        return geode;
    }();
    return box.get();
}

osg::Node* textShape(const std::string& words) {
    auto* text = new osgText::Text3D;
    if (osgText::Font* font = textFont())
        text->setFont(font);
    text->setCharacterSize(kLetterHeight);
    text->setCharacterDepth(kLetterDepth);
    text->setAlignment(osgText::TextBase::CENTER_BASE_LINE);
    text->setText(words, osgText::String::ENCODING_UTF8);
    text->setColor(osg::Vec4(1.0f, 1.0f, 1.0f, 1.0f));
    auto* geode = new osg::Geode;
    geode->addDrawable(text);
    return geode;
}

} // namespace vessa::core

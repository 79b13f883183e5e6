#pragma once

#include <osg/Vec4>

// The gallery's colours: bright, friendly and easy to tell apart.
namespace gallery::palette {

inline const osg::Vec4 White{0.97f, 0.97f, 0.95f, 1};
inline const osg::Vec4 Cream{1.00f, 0.93f, 0.78f, 1};
inline const osg::Vec4 Black{0.12f, 0.12f, 0.15f, 1};
inline const osg::Vec4 Gray{0.64f, 0.66f, 0.70f, 1};
inline const osg::Vec4 DarkGray{0.32f, 0.33f, 0.37f, 1};
inline const osg::Vec4 Red{0.92f, 0.22f, 0.20f, 1};
inline const osg::Vec4 DarkRed{0.66f, 0.13f, 0.14f, 1};
inline const osg::Vec4 Pink{1.00f, 0.62f, 0.72f, 1};
inline const osg::Vec4 Orange{1.00f, 0.56f, 0.12f, 1};
inline const osg::Vec4 Rust{0.84f, 0.38f, 0.08f, 1};
inline const osg::Vec4 Gold{0.98f, 0.72f, 0.12f, 1};
inline const osg::Vec4 Yellow{1.00f, 0.85f, 0.20f, 1};
inline const osg::Vec4 Lime{0.62f, 0.88f, 0.30f, 1};
inline const osg::Vec4 Green{0.32f, 0.76f, 0.30f, 1};
inline const osg::Vec4 DarkGreen{0.15f, 0.50f, 0.24f, 1};
inline const osg::Vec4 Teal{0.10f, 0.70f, 0.68f, 1};
inline const osg::Vec4 SkyBlue{0.58f, 0.80f, 1.00f, 1};
inline const osg::Vec4 Blue{0.22f, 0.48f, 0.95f, 1};
inline const osg::Vec4 Navy{0.16f, 0.22f, 0.48f, 1};
inline const osg::Vec4 Purple{0.58f, 0.38f, 0.86f, 1};
inline const osg::Vec4 Brown{0.55f, 0.34f, 0.18f, 1};
inline const osg::Vec4 DarkBrown{0.36f, 0.22f, 0.12f, 1};
inline const osg::Vec4 Tan{0.87f, 0.69f, 0.47f, 1};
inline const osg::Vec4 Skin{1.00f, 0.80f, 0.66f, 1};
inline const osg::Vec4 DarkSkin{0.66f, 0.44f, 0.30f, 1};

} // namespace gallery::palette

"""Vectors as 3-tuples and orientations as unit quaternions (w, x, y, z).

Axes of every object: x to its right, y up, z forward.
"""

import math

IDENTITY = (1.0, 0.0, 0.0, 0.0)
RIGHT, UP, FORWARD = (1.0, 0.0, 0.0), (0.0, 1.0, 0.0), (0.0, 0.0, 1.0)


def add(a, b):
    return (a[0] + b[0], a[1] + b[1], a[2] + b[2])


def sub(a, b):
    return (a[0] - b[0], a[1] - b[1], a[2] - b[2])


def scale(a, k):
    return (a[0] * k, a[1] * k, a[2] * k)


def dot(a, b):
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]


def cross(a, b):
    return (a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0])


def length(a):
    return math.sqrt(dot(a, a))


def normalized(a):
    n = length(a)
    return scale(a, 1.0 / n) if n > 1e-12 else (0.0, 0.0, 0.0)


def quat_mul(p, q):
    pw, px, py, pz = p
    qw, qx, qy, qz = q
    return (pw * qw - px * qx - py * qy - pz * qz,
            pw * qx + px * qw + py * qz - pz * qy,
            pw * qy - px * qz + py * qw + pz * qx,
            pw * qz + px * qy - py * qx + pz * qw)


def quat_conj(q):
    return (q[0], -q[1], -q[2], -q[3])


def quat_normalized(q):
    n = math.sqrt(sum(c * c for c in q))
    return tuple(c / n for c in q) if n > 1e-12 else IDENTITY


def quat_axis_angle(axis, angle):
    axis = normalized(axis)
    s = math.sin(angle / 2.0)
    return (math.cos(angle / 2.0), axis[0] * s, axis[1] * s, axis[2] * s)


def to_axis_angle(q):
    """The rotation of q as (axis, angle in radians), angle in [0, pi]."""
    q = quat_normalized(q)
    if q[0] < 0:
        q = tuple(-c for c in q)
    angle = 2.0 * math.acos(min(1.0, q[0]))
    axis = normalized(q[1:])
    return (axis if axis != (0.0, 0.0, 0.0) else UP), angle


def rotate(q, v):
    """v turned by the orientation q."""
    r = quat_mul(quat_mul(q, (0.0, v[0], v[1], v[2])), quat_conj(q))
    return (r[1], r[2], r[3])


def look_rotation(forward, up=UP):
    """The orientation whose forward axis points along forward, kept upright."""
    f = normalized(forward)
    r = normalized(cross(up, f))
    if r == (0.0, 0.0, 0.0):
        r = RIGHT
    u = cross(f, r)
    # rotation matrix with columns r, u, f -> quaternion
    m00, m11, m22 = r[0], u[1], f[2]
    trace = m00 + m11 + m22
    if trace > 0:
        s = math.sqrt(trace + 1.0) * 2
        q = (0.25 * s, (u[2] - f[1]) / s, (f[0] - r[2]) / s, (r[1] - u[0]) / s)
    elif m00 > m11 and m00 > m22:
        s = math.sqrt(1.0 + m00 - m11 - m22) * 2
        q = ((u[2] - f[1]) / s, 0.25 * s, (u[0] + r[1]) / s, (f[0] + r[2]) / s)
    elif m11 > m22:
        s = math.sqrt(1.0 + m11 - m00 - m22) * 2
        q = ((f[0] - r[2]) / s, (u[0] + r[1]) / s, 0.25 * s, (f[1] + u[2]) / s)
    else:
        s = math.sqrt(1.0 + m22 - m00 - m11) * 2
        q = ((r[1] - u[0]) / s, (f[0] + r[2]) / s, (f[1] + u[2]) / s, 0.25 * s)
    return quat_normalized(q)

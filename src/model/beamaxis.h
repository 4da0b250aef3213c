#pragma once

/// A direction of the beam's position. The value is its letter on the wire.
enum class BeamAxis : char { X = 'x', Y = 'y' };

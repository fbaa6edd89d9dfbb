#pragma once

namespace zarvik::player::shaders {

/// One triangle over the whole target, from the vertex number alone.
inline constexpr const char* backdropVertex = R"(
out vec2 place;
void main() {
    vec2 corner = vec2(gl_VertexID == 1 ? 3.0 : -1.0, gl_VertexID == 2 ? 3.0 : -1.0);
    place = corner;
    gl_Position = vec4(corner, 0.0, 1.0);
}
)";

/// Sky and floor: a dark studio, lighter at the horizon and around the middle of the floor.
inline constexpr const char* backdropFragment = R"(
uniform vec3 eye;
uniform mat4 clipToDirection;  // its columns: right, up, forward, scaled to the window's edges
in vec2 place;
out vec4 colour;
const vec3 zenith = vec3(0.055, 0.068, 0.115);
const vec3 horizon = vec3(0.235, 0.275, 0.400);
const vec3 floorDark = vec3(0.085, 0.098, 0.150);
const vec3 floorLight = vec3(0.140, 0.160, 0.235);
float grain(vec2 p) { return fract(52.9829189 * fract(dot(p, vec2(0.06711056, 0.00583715)))); }
void main() {
    vec3 ray = normalize((clipToDirection * vec4(place, 1.0, 0.0)).xyz);
    vec3 sky = mix(horizon, zenith, smoothstep(0.0, 0.42, ray.y));
    vec3 result = sky;
    if (ray.y < 0.0) {
        vec3 point = eye - ray * (eye.y / ray.y);
        float distance = length(point.xz);
        vec3 ground = mix(floorLight, floorDark, smoothstep(0.3, 6.0, distance));
        result = mix(ground, horizon, smoothstep(2.0, 24.0, distance));
    }
    // Breaks up the bands that eight bits would show in the dark gradients.
    result += (grain(gl_FragCoord.xy) - 0.5) / 160.0;
    colour = vec4(result, 1.0);
}
)";

/// A surface of the scene, or its mirror image in the floor.
inline constexpr const char* surfaceVertex = R"(
layout(location = 0) in vec3 position;
layout(location = 1) in vec2 page;
uniform mat4 worldToClip;
uniform bool mirrored;
out vec2 pagePlace;
out float height;
void main() {
    pagePlace = page;
    height = position.y;
    // Above that the mirror image has faded away.
    gl_ClipDistance[0] = mirrored ? 0.75 - height : 1.0;
    gl_Position = worldToClip * vec4(position.x, mirrored ? -position.y : position.y, position.z, 1.0);
}
)";

inline constexpr const char* surfaceFragment = R"(
uniform sampler2D frame;
uniform bool mirrored;
uniform bool framed;
uniform bool painted;     // false: the page has no picture yet
uniform vec2 surfaceSize; // in the scene's units
in vec2 pagePlace;
in float height;
out vec4 colour;
const vec4 back = vec4(0.16, 0.17, 0.20, 1.0);
const vec4 blank = vec4(0.30, 0.33, 0.40, 1.0);
const float cornerRadius = 0.016;
// The mean of what this pixel covers of the page, from SAMPLES times SAMPLES places: letters stay legible when they are small or seen from the side.
// Smaller pictures of the page would do as well, but making them anew for each frame costs more.
vec4 covered(vec2 across, vec2 down) {
    vec4 sum = vec4(0.0);
    for (int i = 0; i < SAMPLES; ++i) {
        for (int j = 0; j < SAMPLES; ++j) {
            vec2 part = (vec2(i, j) + 0.5) / float(SAMPLES) - 0.5;
            sum += textureLod(frame, pagePlace + across * part.x + down * part.y, 0.0);
        }
    }
    return sum / float(SAMPLES * SAMPLES);
}
void main() {
    vec4 page = covered(dFdx(pagePlace), dFdy(pagePlace));
    bool front = gl_FrontFacing != mirrored;
    vec4 result = !front ? back : painted ? page : blank;
    if (framed) {
        // The distance from the rounded outline, in the scene's units, turned into coverage of this pixel.
        vec2 outside = abs(pagePlace - 0.5) * surfaceSize - surfaceSize * 0.5 + cornerRadius;
        float beyond = length(max(outside, 0.0)) + min(max(outside.x, outside.y), 0.0) - cornerRadius;
        result *= clamp(0.5 - beyond / max(fwidth(beyond), 1e-6), 0.0, 1.0);
    }
    if (mirrored) {
        result *= 0.30 * max(0.0, 1.0 - height / 0.75) * max(0.0, 1.0 - height / 0.75);
    }
    colour = result;
}
)";

/// The toolbar: a rectangle along the upper edge of the window.
inline constexpr const char* toolbarVertex = R"(
uniform float lowerEdge;  // in clip coordinates
out vec2 pagePlace;
void main() {
    pagePlace = vec2(gl_VertexID & 1, gl_VertexID >> 1);
    gl_Position = vec4(pagePlace.x * 2.0 - 1.0, mix(1.0, lowerEdge, pagePlace.y), 0.0, 1.0);
}
)";

inline constexpr const char* toolbarFragment = R"(
uniform sampler2D frame;
in vec2 pagePlace;
out vec4 colour;
void main() { colour = texture(frame, pagePlace); }
)";

}  // namespace zarvik::player::shaders

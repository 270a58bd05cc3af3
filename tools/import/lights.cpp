#include "lights.h"

#include "messages.h"
#include "output.h"

#include <algorithm>
#include <tuple>

constexpr float LEAST_COLOUR = 0.001f; // the language has no light of 0
constexpr double FAR =
    1000.0; // distance of a sun and of the lights that are added, in diagonals of the model
constexpr size_t MOST_PROBES = 50000; // faces on which the light is measured

// ---- the lights of the file ----

/// How the light fades on its way over the distance `d`, in the units of the file, and how the language says
/// so.
static double fadingOf(const aiLight& record, double d, Fading& fading)
{
    const double constant = static_cast<double>(record.mAttenuationConstant);
    const double linear = static_cast<double>(record.mAttenuationLinear) * d;
    const double square = static_cast<double>(record.mAttenuationQuadratic) * d * d;
    fading = FADING_NONE;
    // 0, 1, 0 is what the library sets where the file tells nothing.
    const bool silent =
        record.mAttenuationConstant == 0.0f && record.mAttenuationLinear == 1.0f && square == 0.0;
    const double sum = constant + linear + square;
    if (silent || record.mType == aiLightSource_DIRECTIONAL || !(sum > 0.0) || !std::isfinite(sum))
        return 1.0;
    if (square >= linear && square >= constant)
        fading = FADING_SQUARE;
    else if (linear >= constant)
        fading = FADING_LINEAR;
    return 1.0 / sum;
}

static double range(const Light& light, double distance)
{
    return light.fading == FADING_SQUARE   ? distance * distance
           : light.fading == FADING_LINEAR ? distance
                                           : 1.0;
}

/// False for what is no light of this language: off, ambient, or nowhere.
static bool lightOf(const Model& model, const aiLight& record, Light& light)
{
    Matrix m = model.placement;
    if (const aiNode* node = model.scene->mRootNode->FindNode(record.mName))
        m = m * placeOf(node);
    const Vec middle = (model.low + model.high) * 0.5;
    const double diagonal = (model.high - model.low).Length();
    const Vec direction = unit(turned(m, widen(record.mDirection)));

    light.name = record.mName.C_Str();
    light.colour = record.mColorDiffuse;
    light.position = m * widen(record.mPosition);
    switch (record.mType) {
    case aiLightSource_DIRECTIONAL:
        light.position = middle - direction * (FAR * diagonal);
        break;
    case aiLightSource_POINT:
        break;
    case aiLightSource_SPOT:
        light.spot = true;
        light.target = light.position + direction * diagonal;
        light.minAngle = static_cast<double>(record.mAngleInnerCone) * 180.0 / PI * model.format.coneFactor;
        light.maxAngle = static_cast<double>(record.mAngleOuterCone) * 180.0 / PI * model.format.coneFactor;
        light.maxAngle = std::clamp(light.maxAngle, 0.1, 180.0);
        light.minAngle = std::clamp(light.minAngle, 0.0, light.maxAngle);
        break;
    case aiLightSource_AREA:
        light.radius = static_cast<double>(std::max(record.mSize.x, record.mSize.y)) / 2.0 * model.scale;
        break;
    default:
        return false;
    }
    if (!isFinite(light.position) || (direction.SquareLength() == 0.0 && light.spot))
        return false;

    // As bright on the middle of the model as the file has it, with the language's own fading.
    const double distance = (light.position - middle).Length();
    const double strength = fadingOf(record, distance / model.scale, light.fading) * range(light, distance);
    light.colour = light.colour * static_cast<float>(strength);
    return brightest(light.colour) > 0.0 && std::isfinite(brightest(light.colour));
}

// ---- exposure ----

/// What the light gives to a white surface that is turned to it; shadows are not looked at.
static Colour lightAt(const Light& light, const Vec& point)
{
    const Vec to = light.position - point;
    const double distance = to.Length();
    Colour colour = light.colour;
    if (!(distance > 0.0))
        return Colour();
    // Dim lights do not fade: so the language has it.
    if (colour.r + colour.g + colour.b / 3.0f > 1.0f)
        colour = colour * static_cast<float>(1.0 / range(light, distance));
    if (!light.spot)
        return colour;
    const double cosine = -(to * unit(light.target - light.position)) / distance;
    const double least = std::cos(light.maxAngle * PI / 360.0), most = std::cos(light.minAngle * PI / 360.0);
    const double share =
        most > least ? std::clamp((cosine - least) / (most - least), 0.0, 1.0) : cosine >= least;
    return colour * static_cast<float>(share);
}

/// The point of the triangle that is nearest to `p`: C. Ericson, "Real-Time Collision Detection",
/// 2005, 5.1.5.
static Vec nearestPoint(const Vec corners[3], const Vec& p)
{
    const auto [a, b, c] = std::tie(corners[0], corners[1], corners[2]);
    const Vec ab = b - a, ac = c - a;
    const double d1 = ab * (p - a), d2 = ac * (p - a), d3 = ab * (p - b), d4 = ac * (p - b);
    const double d5 = ab * (p - c), d6 = ac * (p - c);
    const double va = d3 * d6 - d5 * d4, vb = d5 * d2 - d1 * d6, vc = d1 * d4 - d3 * d2;
    if (d1 <= 0.0 && d2 <= 0.0)
        return a;
    if (d3 >= 0.0 && d4 <= d3)
        return b;
    if (d6 >= 0.0 && d5 <= d6)
        return c;
    if (vc <= 0.0 && d1 >= 0.0 && d3 <= 0.0)
        return a + ab * (d1 / (d1 - d3));
    if (vb <= 0.0 && d2 >= 0.0 && d6 <= 0.0)
        return a + ac * (d2 / (d2 - d6));
    if (va <= 0.0 && d4 >= d3 && d5 >= d6)
        return b + (c - b) * ((d4 - d3) / ((d4 - d3) + (d5 - d6)));
    return a + ab * (vb / (va + vb + vc)) + ac * (vc / (va + vb + vc));
}

static double sumAt(const std::vector<Light>& lights, const Vec& point)
{
    Colour sum;
    for (const Light& light : lights)
        sum = sum + lightAt(light, point);
    return brightest(sum);
}

/// The brightest place of a face, of those that are likely: the corners, what is nearest to each light, and
/// where the axis of a spot meets it.
static double brightestOf(const Vec corners[3], const std::vector<Light>& lights)
{
    double most = 0.0;
    for (int k = 0; k < 3; ++k)
        most = std::max(most, sumAt(lights, corners[k]));
    const Vec normal = (corners[1] - corners[0]) ^ (corners[2] - corners[0]);
    for (const Light& light : lights) {
        most = std::max(most, sumAt(lights, nearestPoint(corners, light.position)));
        const Vec axis = light.target - light.position;
        const double along = light.spot ? (corners[0] - light.position) * normal / (axis * normal) : 0.0;
        if (along > 0.0 && std::isfinite(along))
            most = std::max(most, sumAt(lights, nearestPoint(corners, light.position + axis * along)));
    }
    return most;
}

/// The brightest sum of all lights on any face, or on an even sample of the faces.
static double exposure(const std::vector<Light>& lights, const Model& model)
{
    const size_t step = model.triangles / MOST_PROBES + 1;
    double most = 0.0;
    size_t next = 0;
    for (const Instance& instance : model.instances) {
        for (; next < instance.mesh->mNumFaces; next += step) {
            Vec corners[3];
            if (faceCorners(instance, instance.mesh->mFaces[next], corners) == FACE_GOOD)
                most = std::max(most, brightestOf(corners, lights));
        }
        next -= instance.mesh->mNumFaces;
    }
    return most;
}

/// Brings the brightest place to 1. Dimmer lights may cease to fade, so this takes more than one step.
static void expose(std::vector<Light>& lights, const Model& model)
{
    for (int step = 0; step < 16; ++step) {
        const double most = exposure(lights, model);
        if (most > 0.999 && most <= 1.0)
            return;
        for (Light& light : lights)
            light.colour = light.colour * static_cast<float>(0.9999 / most);
    }
}

// ---- the lights that are added ----

static std::vector<Light> addedLights(const Model& model, const Camera& camera)
{
    // Round from the camera towards the right, and up, in degrees; the strengths have the sum 1.
    static const struct {
        const char* name;
        double round, up;
        float strength;
    } STUDIO[] = {{"key", -35, 40, 0.7f}, {"fill", 50, 20, 0.2f}, {"rim", 160, 40, 0.1f}};

    const Vec middle = (model.low + model.high) * 0.5;
    const double distance = FAR * (model.high - model.low).Length();
    Vec front = camera.position - middle;
    front.z = 0.0;
    if (front.SquareLength() < 1e-6 * distance * distance)
        front = Vec(0, -1, 0);
    front = unit(front);
    const Vec right(-front.y, front.x, 0);
    std::vector<Light> lights;
    for (const auto& row : STUDIO) {
        const double round = row.round * PI / 180.0, up = row.up * PI / 180.0;
        Light& light = lights.emplace_back();
        light.name = row.name;
        light.position = middle + (front * (std::cos(round) * std::cos(up)) +
                                   right * (std::sin(round) * std::cos(up)) + Vec(0, 0, std::sin(up))) *
                                      distance;
        light.colour = Colour(row.strength, row.strength, row.strength);
    }
    return lights;
}

std::vector<Light> chooseLights(const Model& model, const Camera& camera)
{
    std::vector<Light> lights;
    for (unsigned i = 0; i < model.scene->mNumLights; ++i) {
        Light light;
        if (lightOf(model, *model.scene->mLights[i], light))
            lights.push_back(light);
    }
    if (!lights.empty() && exposure(lights, model) > 0.0) {
        expose(lights, model);
        return lights;
    }
    warn("%s, added a key, a fill and a rim light",
         lights.empty() ? "no light in the file" : "no light reaches the model");
    return addedLights(model, camera);
}

void putLight(const Light& light)
{
    const Colour colour(std::max(light.colour.r, LEAST_COLOUR), std::max(light.colour.g, LEAST_COLOUR),
                        std::max(light.colour.b, LEAST_COLOUR));
    static const char* const FADINGS[] = {"none", "d", "d2"}; // as in Fading
    putComment(light.name);
    putAll("light { position ", light.position, "  color ", static_cast<double>(colour.r), " ",
           static_cast<double>(colour.g), " ", static_cast<double>(colour.b), "  attenuation_type \"",
           FADINGS[light.fading], "\"");
    if (light.spot)
        putAll("  light_type \"spot\"  target ", light.target, "  min_angle ", light.minAngle, "  max_angle ",
               light.maxAngle);
    if (light.radius > 0.0)
        putAll("  shadow_type \"smooth\"  radius ", light.radius, "  light_samples 16");
    put(" }\n");
}

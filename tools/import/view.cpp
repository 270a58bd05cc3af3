#include "view.h"

#include "messages.h"
#include "output.h"

#include <algorithm>

constexpr double FILM = 36.0; // width of what a lens lights, in millimetres
constexpr double FILL = 0.85; // the part of the picture that the model's box takes, across or down

// From where a view looks at the model, in degrees: round from the front towards the right, and up.
static const struct {
    const char* name;
    double round, up;
} VIEWS[] = {{"corner", 35, 25}, {"front", 0, 10},  {"back", 180, 10},
             {"left", -90, 10},  {"right", 90, 10}, {"top", 0, 90}};

struct Axes {
    Vec ahead, right, up; // unit and square to each other
};

static Axes axesOf(const Camera& camera)
{
    const Vec ahead = unit(camera.lookAt - camera.position);
    const Vec right = unit(ahead ^ camera.up);
    return {ahead, right, right ^ ahead};
}

static double halfWidth(const Camera& camera)
{
    return std::tan(camera.fov * PI / 360.0);
}

/// Where the corners of the box lie in the picture, from -1 to 1 across and up; all of it is ahead.
static void boxInPicture(const Camera& camera, const Vec& low, const Vec& high, double across[2],
                         double up[2])
{
    const Axes axes = axesOf(camera);
    const double width = halfWidth(camera), height = width * HEIGHT / WIDTH;
    across[0] = up[0] = INFINITY;
    across[1] = up[1] = -INFINITY;
    for (int i = 0; i < 8; ++i) {
        const Vec corner((i & 1) ? high.x : low.x, (i & 2) ? high.y : low.y, (i & 4) ? high.z : low.z);
        const Vec to = corner - camera.position;
        const double depth = to * axes.ahead;
        const double x = to * axes.right / (depth * width), y = to * axes.up / (depth * height);
        across[0] = std::min(across[0], x);
        across[1] = std::max(across[1], x);
        up[0] = std::min(up[0], y);
        up[1] = std::max(up[1], y);
    }
}

static Camera frame(const Model& model, View view)
{
    const double round = VIEWS[view].round * PI / 180.0, rise = VIEWS[view].up * PI / 180.0;
    const Vec from(std::sin(round) * std::cos(rise), -std::cos(round) * std::cos(rise), std::sin(rise));

    Camera camera;
    camera.name = std::string("view ") + VIEWS[view].name;
    camera.up = view == VIEW_TOP ? Vec(0, 1, 0) : Vec(0, 0, 1);
    camera.lookAt = (model.low + model.high) * 0.5;
    // Each step brings the box's picture nearer to the middle and to its size, by the distance to the side
    // that is nearest, which counts most; the error shrinks many times over.
    const Vec extent = model.high - model.low;
    const double half =
        (std::fabs(from.x) * extent.x + std::fabs(from.y) * extent.y + std::fabs(from.z) * extent.z) / 2.0;
    double nearest = 2.0 * extent.Length() / halfWidth(camera);
    for (int step = 0; step < 60; ++step) {
        camera.position = camera.lookAt + from * (half + nearest);
        double across[2], up[2];
        boxInPicture(camera, model.low, model.high, across, up);
        const Axes axes = axesOf(camera);
        const double width = halfWidth(camera) * nearest, height = width * HEIGHT / WIDTH;
        camera.lookAt +=
            axes.right * ((across[0] + across[1]) / 2.0 * width) + axes.up * ((up[0] + up[1]) / 2.0 * height);
        nearest *= std::max(across[1] - across[0], up[1] - up[0]) / 2.0 / FILL;
    }
    return camera;
}

/// The camera of the file in the frame of the scene.
static Camera cameraOf(const Model& model, unsigned index)
{
    const aiCamera& record = *model.scene->mCameras[index];
    Camera camera;
    Matrix m = model.placement;
    if (const aiNode* node = model.scene->mRootNode->FindNode(record.mName))
        m = m * placeOf(node);
    camera.name = std::string("camera ") + std::to_string(index) + " of the file: " + record.mName.C_Str();
    camera.position = m * (model.format.nodeCameras ? Vec() : widen(record.mPosition));
    const Vec ahead = unit(turned(m, widen(record.mLookAt)));
    camera.lookAt = camera.position + ahead * ((model.high - model.low).Length());
    camera.up = unit(turned(m, widen(record.mUp)));
    camera.fov = static_cast<double>(record.mHorizontalFOV) * 180.0 / PI;
    if (model.format.nodeCameras) {
        // The file has the angle down the height; the picture shows at least what that of the author would.
        constexpr double SHAPE = static_cast<double>(WIDTH) / HEIGHT;
        const double aspect = record.mAspect > 0.0f ? static_cast<double>(record.mAspect) : 1.0;
        const double down = static_cast<double>(record.mHorizontalFOV) / aspect;
        camera.fov = 2.0 * std::atan(std::tan(down / 2.0) * std::max(aspect, SHAPE)) * 180.0 / PI;
    }
    if (model.format.lenses) {
        camera.fov = 2.0 * std::atan(FILM / 2.0 / camera.fov) * 180.0 / PI;
        camera.up = Vec(0, 0, 1);
    }
    return camera;
}

/// True if the camera sees some vertex of the model, were nothing in the way.
static bool seesModel(const Camera& camera, const Model& model)
{
    const Axes axes = axesOf(camera);
    if (!isFinite(camera.position) || !(axes.right.SquareLength() > 0.0) ||
        !(camera.fov > 0.0 && camera.fov < 180.0))
        return false;
    const double width = halfWidth(camera), height = width * HEIGHT / WIDTH;
    for (const Instance& instance : model.instances)
        for (unsigned v = 0; v < instance.mesh->mNumVertices; ++v) {
            const Vec to = instance.place * widen(instance.mesh->mVertices[v]) - camera.position;
            const double depth = to * axes.ahead;
            if (depth > 0.0 && std::fabs(to * axes.right) < width * depth &&
                std::fabs(to * axes.up) < height * depth)
                return true;
        }
    return false;
}

Camera chooseCamera(const Options& options, const Model& model)
{
    const unsigned count = model.scene->mNumCameras;
    const unsigned wanted = options.camera >= 0 ? static_cast<unsigned>(options.camera) : 0;
    Camera camera;
    if (options.viewGiven || (count == 0 && options.camera < 0)) {
        camera = frame(model, options.view);
        if (!options.viewGiven)
            warn("no camera in the file, added one: %s", camera.name.c_str());
    } else if (wanted >= count) {
        camera = frame(model, options.view);
        warn("no camera %u in the file, which has %u; added one: %s", wanted, count, camera.name.c_str());
    } else if (camera = cameraOf(model, wanted); !seesModel(camera, model)) {
        const std::string name = camera.name;
        camera = frame(model, options.view);
        warn("%s does not see the model, added another: %s", name.c_str(), camera.name.c_str());
    }
    return camera;
}

void putCamera(const Camera& camera)
{
    // The language divides angles, and a picture of true shape asks for their tangents.
    const double down = std::atan(halfWidth(camera) * HEIGHT / WIDTH) * 360.0 / PI;
    putComment(camera.name);
    putAll("camera { position ", camera.position, "  look_at ", camera.lookAt, "  up ", camera.up, "  fov ",
           camera.fov, "  ratio ", camera.fov / down, " }\n");
}

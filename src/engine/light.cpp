#include "engine/light.h"

#include "bounds/intersec.h"
#include "engine/random.h"

#include <cstdio>
#include <cstdlib>

void makeLight(const Light& wanted)
{
    auto* self = static_cast<Light*>(malloc(sizeof(Light)));
    if (self == nullptr) {
        printf(" Memory allocation for light failed. Light not added to scene.");
        return;
    }
    *self = wanted;
    self->direction = unit(wanted.direction);
    self->head.type = LIGHT;
    addToList(&myLightList, &self->head);
}

Vec jitterVector()
{
    Vec jitterVec;
    jitterVec.x = 0.5 - randomNumber();
    jitterVec.y = 0.5 - randomNumber();
    jitterVec.z = 0.5 - randomNumber();
    return unit(jitterVec);
}

double makeLightRay(const Object* light, Vec point, Ray* ray)
{
    const Vec toLight = recordOf<Light>(light).position - point;
    *ray = {.origin = point, .direction = unit(toLight)};
    return lengthOf(toLight);
}

Color getLightColor(const Object* light, const Object* object, const Ray* ray, double distance)
{
    return isBlocked(ray, distance, object) ? Color{} : recordOf<Light>(light).color;
}

Color smoothShadow(const Object* light, const Object* object, const Ray* ray, double distance)
{
    const Light& lamp = recordOf<Light>(light);
    const double spread = lamp.radius / distance;
    Color sum{};
    for (int i = 0; i < lamp.samples; ++i) {
        const Ray sample = {.origin = ray->origin,
                            .direction = unit(ray->direction + spread * jitterVector())};
        if (!isBlocked(&sample, distance, object))
            sum = sum + lamp.color;
    }
    return sum / lamp.samples;
}

#include "primitives/kinds.h"

#include <iterator>

// by type, of which SPHERE is the first
static constexpr const Operations* operations[] = {&sphereOperations,   &planeOperations,   &ringOperations,
                                                   &triangleOperations, &polygonOperations, &coneOperations,
                                                   &patchOperations};
static_assert(std::size(operations) == PATCH - SPHERE + 1);

static const Operations& operationsOf(const Object* self)
{
    return *operations[self->type - SPHERE];
}

int ObjectIntersect(const Object* self, const Ray* ray, Hit* hit)
{
    return operationsOf(self).intersect(self, ray, hit);
}

Vec ObjectNormal(const Object* self, Vec point, const Hit* hit)
{
    // Not by the table: this becomes a part of the caller, and what a call returns goes through memory.
    switch (self->type) {
    case SPHERE:
        return sphereNormal(recordOf<Sphere>(self), point);
    case PLANE:
        return planeNormal(recordOf<Plane>(self));
    case RING:
        return ringNormal(recordOf<Ring>(self));
    case TRIANGLE:
        return triangleNormal(recordOf<Triangle>(self));
    case POLYGON:
        return polygonNormal(recordOf<Polygon>(self));
    case CONE:
        return coneNormal(recordOf<Cone>(self), point);
    default:
        return patchNormal(*hit);
    }
}

void fillHit(const Object* self, const Ray* ray, double distance, Hit* hit)
{
    *hit = {.distance = distance, .entering = self->type != CONE, .object = self, .hitNormal = {}};
    if (self->type == SPHERE) {
        hit->entering = sphereEntered(recordOf<Sphere>(self), ray->origin);
    } else if (self->type == PATCH) {
        const Patch& patch = recordOf<Patch>(self);
        double u, v;
        patchWeights(patch, *ray, distance, &u, &v);
        hit->hitNormal = patchHitNormal(patch, u, v);
    }
}

void ObjectPrint(const Object* self)
{
    operationsOf(self).print(self);
}

int printList(const Object* head)
{
    int count = 0;
    for (; head != nullptr; head = head->next, ++count)
        ObjectPrint(head);
    return count;
}

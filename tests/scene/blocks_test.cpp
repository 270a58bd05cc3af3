#include "primitives/kinds.h"
#include "support.h"

using BlocksTest = SceneTest;

/// What it prints on standard output.
static std::string parse(const std::string& text)
{
    const Folder folder;
    return printed([&] { parseScene(folder.write("scene", text).c_str()); });
}

// The text up to the token at fault, what is printed of it, and the message if that is not all.
static const char* const faults = R"(sphere <| Opening bracket '{' expected
sphere {~ color| Unkown parameter in sphere structure
sphere { radius 0| sphere radius must be greater than 0
sphere { radius 1 center <0 0 0>~center <0 0 0>~}| error in sphere structure declaration
plane { normal <0 0 0> }| error in plane structure declaration
plane { normal <0 0 0> distance 0 }| plane normal cannot be <0 0 0>
cylinder { radius -1 cap <0 0 0> }| error in cylinder structure declaration
cylinder { radius 0 base <0 0 0> cap <0 0 0> }| radius cannot be null or negative
cylinder { radius 1 base <1 2 3> cap <1 2 3> }| base and cap cannot be the same point
cone { base_radius 0 cap_radius 0 cap <0 0 1> }| Error in cone structure
cone { base_radius 0 cap_radius 0 cap <0 0 1> base <0 0 1> }| base radius and cap radius cannot be both null
cone { base_radius -1 cap_radius 1 cap <0 0 1> base <0 0 1> }| base radius or cap radius cannot be negative
cone { base_radius 1 cap_radius -1 cap <0 0 1> base <0 0 1> }| base radius or cap radius cannot be negative
cone { base_radius 0 cap_radius 1 cap <0 0 1> base <0 0 1> }| base and cap cannot be the same point
disc { center <0 0 0> radius 0 }| missing parameter(s) in disc structure
disc { center <0 0 0> radius 0 normal <0 0 0> }| radius cannot be null or negative
ring { center <0 0 0> normal <0 0 1> internal_radius 0 }| missing parameter(s) in disc structure
ring { center <0 0 0> normal <0 0 1> internal_radius 0 external_radius 0 }| external and internal radius cannot be null or negative
ring { center <0 0 0> normal <0 0 1> internal_radius 2 external_radius 0 }| external and internal radius cannot be null or negative
ring { center <0 0 0> normal <0 0 1> internal_radius 2 external_radius 2 }| both radius are equal
triangle { vertex <0 0 0> vertex <1 0 0> }| Too few vertices in triangle structure
triangle { vertex <0 0 0> vertex <1 0 0> vertex <0 1 0>~vertex| Too many vertices in triangle structure
smooth_triangle { normal <0 0 1> vertex <0 0 0> vertex <1 0 0> vertex <0 1 0> }| Too few normals in patch structure
patch { normal <0 0 1> normal <0 0 1> normal <0 0 1> vertex <1 0 0> vertex <0 1 0> }| Too few vertices in patch structure
patch { vertex <0 0 0> vertex <1 0 0> vertex <0 1 0> vertex| Too many vertices in patch structure
patch { normal <0 0 1> normal <0 0 1> normal <0 0 1>~normal| Too many normals in patch structure
polygon { vertex| Integer value expected
polygon { 3| valid number of vertices expected
polygon { 4 vertex <0 0 0> vertex <1 0 0> vertex <1 1 0> vertex <0 1 0>~vertex| Too many vertices in polygon structure
polygon { 4 vertex <0 0 0> vertex <1 0 0> vertex <1 1 0> }| Too few vertices in polygon structure
camera~1| Opening bracket '{' expected
camera { samples 0| camera samples must be greater than 0
camera { projection_type "round"| invalid camera projection type specified
camera { position <0 0 0> position <0 0 0> look_at <0 0 1>~}| error in camera structure declaration
camera { focal_length 1 focal_point <0 0 1> look_at <0 0 1> position <0 0 0> }| focal lenght OR focal point must be defined
settings { output_type "jpg"| invalid output file type specified
settings { aa_jitter "1"| jitter must be either 'yes' or 'no'
settings { aa_type "corners"| invalid anti-aliasing type specified
settings { output_name "a"~}| error in settings structure declaration
declare "a" color 0 0 -1 surface { color #a| invalid color component(s)
surface { color 1.001 0 0| invalid color component(s)
surface { color 1 -0.001 0| invalid color component(s)
surface { reflection_type "blurred"| invalid reflection type specified
light { light_type "sun"| invalid light type specified
light { color 1 0 1| invalid color component(s)
light { color 0 1 1| invalid color component(s)
light { color 1 1 -1| invalid color component(s)
light { radius 0| smooth light radius must be greater than 0
light { attenuation_type "d3"| invalid light attenuation type specified
light { shadow_type "soft"| invalid shadow type specified
light { light_samples 0| smooth light samples must be greater than 0
light { target <1 1 1> position <1 1 1> }| Error in light structure - invalid target
light { position <0 0 1> color 1 1 1 shadow_type "smooth" samples 8 }| Error in light structure - missing parameters
light { position <0 0 1> color 1 1 1 shadow_type "smooth" radius 1 samples 8 light_samples 8 }| Error in light structure - missing parameters
light { position <0 0 1> color 1 1 1 light_type "spot" }| Error in light structure - missing parameters
declare "a"~surface| Unkown element in declaration
surface { color #a } declare "a" color 1 1 1| Color declaration not found
modify| Unkown term|~ Scene parser returned error: 1000 'modify'~
{| Unkown term|~ Scene parser returned error: 10 ''~
declare ")";

TEST_F(BlocksTest, Faults)
{
    for (const auto& row : rowsOf(faults + std::string(64, 'a') + "\"| declared name too long")) {
        SCOPED_TRACE(row[0]);
        const Folder folder;
        const std::string file = folder.write("scene", row[0]);
        const Outcome outcome = inChild([&file] { parseScene(file.c_str()); });
        const auto line = 1 + std::count(row[0].begin(), row[0].end(), '\n');
        EXPECT_EQ(outcome.status, 255) << outcome.err;
        EXPECT_EQ(outcome.out, "\n Parsing " + file + (row.size() > 2 ? row[2] : "") +
                                   "\n Parser Error - line: " + std::to_string(line) + " - " + row[1] + "\n");
    }
}

TEST_F(BlocksTest, ObjectsKeepWhatTheirBlocksSay)
{
    parse(R"(sphere { radius 2 center <1 2 3> } declare "a" color 9 9 9 declare "a" color 0.5 0.25 1
        declare "b" color 1 1 1
        surface { color #a ambient 1 diffuse 2 brilliance 3 specular 4 roughness 5 reflection 6 refraction 9
        reflection_type "fuzzy" reflection_samples 7.5 reflection_radius 8 refraction_index 10 }
        plane { distance 2 normal <0 0 4> }
        ring { internal_radius 2 external_radius 1 normal <0 2 0> center <1 1 1> }
        disc { radius 3 normal <2 0 0> center <4 5 6> }
        cylinder { radius 1 cap <0 0 3> base <0 0 1> }
        cone { base_radius 0 cap_radius 2 base <0 0 0> cap <0 4 0> }
        surface { refraction_index 0.5 color 1 1 0 }
        patch { normal <0 0 1> normal <0 3 4> vertex <0 0 0> normal <3 0 4> vertex <1 0 0> vertex <0 1 0> })");
    EXPECT_EQ(printed([] { EXPECT_EQ(printList(myObjectList), 7); }),
              "patch\nCone: 0 0 0 0 0 4 0 2\nCone: 0 0 1 1 0 0 3 1\n"
              "Ring: Nx = 1, Ny = 0, Nz = 0\n Cx = 4, Cy = 5, Cz = 6\n"
              "Ring: Nx = 0, Ny = 1, Nz = 0\n Cx = 1, Cy = 1, Cz = 1\n"
              "Plane: Nx = -0, Ny = -0, Nz = -1, D = 2\nSphere: Cx = 1, Cy = 2, Cz = 3, R = 2\n");
    const Object *patch = myObjectList, *disc = patch->next->next->next;
    const Ring& ring = recordOf<Ring>(disc->next);
    EXPECT_EQ(line(ring.innerSquared, ring.outerSquared, recordOf<Ring>(disc).outerSquared), "1 4 9 ");
    EXPECT_EQ(patch->boundsMax[0], 1 + EPSILON);
    expectNear(recordOf<Patch>(patch).normals[1], {0, 0.6, 0.8});
    expectNear(recordOf<Patch>(patch).normals[2], {0.6, 0, 0.8});
    EXPECT_EQ(line(*patch->surface), "1 1 0 0 0 0 0 0 0 0 10 1 0 1  ");
    EXPECT_EQ(line(*disc->surface), "0.5 0.25 1 1 2 3 4 5 6 1 7 8 9 10  ");
    EXPECT_EQ(line(*disc->next->next->next->surface), "0 0 0 0 0 0 0 0 0 0 10 1 0 1  ");
}

TEST_F(BlocksTest, Lights)
{
    parse(R"(light { position <0 0 9> color 2 2 2 light_samples 3 samples 4 target <0 0 8> }
        light { color 1 1 1 light_type "spot" target <0 0 -5> radius 2 samples 6 shadow_type "smooth"
        attenuation_type "d" min_angle 120 max_angle 90 position <0 0 5> })");
    EXPECT_EQ(line(recordOf<Light>(myLightList)), "1 1 1 0 0 5 0 0 -1 1 1 1 6 2 0.5 0.707107  ");
    EXPECT_EQ(line(recordOf<Light>(myLightList->next)), "2 2 2 0 0 9 0 0 -1 0 0 2 4 0 0.996195 0.965926  ");
}

TEST_F(BlocksTest, SurfaceLastsOverAnIncludeButNotIntoTheNextScene)
{
    const Folder folder;
    std::filesystem::current_path(folder.path); // the scanner takes no path for a string
    folder.write("part", "sphere { radius 1 center <0 0 0> } surface { color 1 0 0 }");
    const std::string scene = folder.write("scene", R"(include "part" sphere { radius 1 center <0 0 0> })");
    for (const int spheres : {2, 4}) {
        printed([&] { parseFile(scene.c_str()); });
        EXPECT_EQ(nPrims, spheres);
        EXPECT_EQ(myObjectList->surface->color.red, 1);
        EXPECT_EQ(myObjectList->next->surface->color.red, 0); // ahead of the first surface block
    }
    std::filesystem::current_path("/");
}

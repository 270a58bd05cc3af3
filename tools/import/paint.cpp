#include "paint.h"

#include "messages.h"
#include "output.h"
#include "parallel.h"

#include <algorithm>
#include <numeric>

constexpr float UNIFORM = 0.06f;       // a part of a picture that varies less is not split
constexpr unsigned DEEPEST = 1u << 24; // twelve times into quarters
constexpr size_t MOST_PIECES = 4000000;

// ---- colours ----

static Colour product(const Colour& a, const Colour& b)
{
    return {a.r * b.r, a.g * b.g, a.b * b.b};
}

/// True if the mesh has colours at its vertices that tell something: many an exporter writes white for none.
static bool hasColours(const aiMesh& mesh)
{
    if (!mesh.HasVertexColors(0))
        return false;
    const aiColor4D* colours = mesh.mColors[0];
    return std::any_of(colours, colours + mesh.mNumVertices,
                       [](const aiColor4D& c) { return c.r < 1.0f || c.g < 1.0f || c.b < 1.0f; });
}

static Colour meanColour(const aiMesh& mesh, const aiFace& face)
{
    Colour sum;
    for (int k = 0; k < 3; ++k) {
        const aiColor4D& c = mesh.mColors[0][face.mIndices[k]];
        sum = sum + Colour(c.r, c.g, c.b);
    }
    return sum * (1.0f / 3.0f);
}

// ---- pieces ----

/// What gives the faces of an instance their colours.
struct Coat {
    Texture texture;
    bool atVertices = false;
    Colour tint = Colour(1, 1, 1); // multiplied with them
};

static Colour screenColour(const Model& model, const Colour& colour)
{
    return model.format.linearColours ? screenFrom(colour) : colour;
}

/// Cuts the part into quarters until no edge is longer than `split` or the picture hardly varies on it.
static void cutPieces(const Coat& coat, const Vec coordinates[3], double longest, double split, Piece piece,
                      Paint& paint)
{
    Vec weights[3], corners[3];
    partWeights(piece.part, weights);
    for (int k = 0; k < 3; ++k)
        corners[k] = blend(coordinates, weights[k]);
    const Sample sample = sampleTriangle(coat.texture, corners);
    if (longest > split && sample.variation > UNIFORM && piece.part < DEEPEST &&
        paint.pieces.size() < MOST_PIECES) {
        for (unsigned quarter = 0; quarter < 4; ++quarter)
            cutPieces(coat, coordinates, longest / 2.0, split,
                      {piece.instance, piece.face, piece.part * 4 + quarter}, paint);
        return;
    }
    paint.pieces.push_back(piece);
    paint.colours.push_back(packRgb(product(sample.mean, coat.tint)));
}

static void takePieces(const Options& options, const Model& model, unsigned index, const Coat& coat,
                       Paint& paint)
{
    const Instance& instance = model.instances[index];
    const aiMesh& mesh = *instance.mesh;
    const double split = options.split > 0.0 ? options.split : (model.high - model.low).Length() / 150.0;
    for (unsigned f = 0; f < mesh.mNumFaces; ++f) {
        Vec corners[3], coordinates[3];
        if (faceCorners(instance, mesh.mFaces[f], corners) != FACE_GOOD)
            continue;
        ++paint.wholes;
        if (coat.texture.picture == nullptr) {
            paint.pieces.push_back({index, f, 1});
            paint.colours.push_back(
                packRgb(product(screenColour(model, meanColour(mesh, mesh.mFaces[f])), coat.tint)));
            continue;
        }
        double longest = 0.0;
        for (int k = 0; k < 3; ++k) {
            coordinates[k] = widen(mesh.mTextureCoords[coat.texture.channel][mesh.mFaces[f].mIndices[k]]);
            longest = std::max(longest, (corners[(k + 1) % 3] - corners[k]).Length());
        }
        cutPieces(coat, coordinates, longest, split, {index, f, 1}, paint);
    }
}

/// Behind glass lies the floor, or what the user's scene has; an endless way leaves only clear glass any
/// light.
static double glassTint(const Options& options, const Model& model)
{
    const Vec extent = model.high - model.low;
    return options.floor || options.geometry ? 1.5 / std::max({extent.x, extent.y, extent.z}) : 0.0;
}

std::vector<Paint> makePaints(const Options& options, const Model& model)
{
    std::vector<Paint> paints;
    Pictures pictures;
    for (size_t begin = 0, end = 0; begin < model.instances.size(); begin = end) {
        const unsigned material = model.instances[begin].mesh->mMaterialIndex;
        while (end < model.instances.size() && model.instances[end].mesh->mMaterialIndex == material)
            ++end;
        Paint& paint = paints.emplace_back();
        paint.begin = begin;
        paint.end = end;
        paint.painted.resize(end - begin);
        paint.surface = surfaceOf(*model.scene->mMaterials[material], model.format);
        paint.surface.tint = glassTint(options, model);
        const Texture texture = textureOf(options, model, *model.scene->mMaterials[material], pictures);
        for (size_t i = begin; i < end; ++i) {
            const aiMesh& mesh = *model.instances[i].mesh;
            Coat coat;
            coat.atVertices = hasColours(mesh);
            if (texture.picture != nullptr && mesh.HasTextureCoords(texture.channel))
                coat.texture = texture;
            // A black material with a picture is one whose author left the colour to the picture.
            const bool tinted =
                coat.texture.picture != nullptr ? model.format.tintedPictures : model.format.tintedColours;
            if (tinted && brightest(paint.surface.colour) > 0.0)
                coat.tint = paint.surface.colour;
            paint.painted[i - begin] = coat.texture.picture != nullptr || coat.atVertices;
            if (paint.painted[i - begin])
                takePieces(options, model, static_cast<unsigned>(i), coat, paint);
        }
        if (paint.pieces.size() >= MOST_PIECES)
            warn("more than %zu faces for one picture: the rest are not split", MOST_PIECES);
        paint.palette = quantise(paint.colours, static_cast<size_t>(options.colours));
    }
    return paints;
}

// ---- writing ----

static void putPlain(const Options& options, const Model& model, const Paint& paint)
{
    // The faces of all instances count on; `ends` has the number behind the last of each.
    std::vector<size_t> ends;
    size_t count = 0;
    for (size_t i = paint.begin; i < paint.end; ++i)
        ends.push_back(count += paint.painted[i - paint.begin] ? 0 : model.instances[i].mesh->mNumFaces);

    const auto eachFace = [&](size_t begin, auto&& act) {
        size_t i = static_cast<size_t>(std::upper_bound(ends.begin(), ends.end(), begin) - ends.begin());
        for (size_t end = std::min(count, begin + BLOCK); begin < end; ++begin) {
            while (begin >= ends[i])
                ++i;
            const Instance& instance = model.instances[paint.begin + i];
            const size_t faces = instance.mesh->mNumFaces;
            Face face;
            if (makeFace(instance, static_cast<unsigned>(begin - (ends[i] - faces)), face))
                act(face);
        }
    };
    bool any = false;
    for (size_t begin = 0; begin < count && !any; begin += BLOCK)
        eachFace(begin, [&](const Face&) { any = true; });
    if (!any)
        return;
    putSurface(paint.surface, paint.surface.colour);
    putInOrder(blocksOf(count), [&](size_t block) {
        eachFace(block * BLOCK, [&](const Face& face) { putFace(face, 1, options.flat); });
    });
}

static void putPieces(const Options& options, const Model& model, const Paint& paint)
{
    std::vector<unsigned> order(paint.pieces.size());
    std::iota(order.begin(), order.end(), 0u);
    std::stable_sort(order.begin(), order.end(),
                     [&](unsigned a, unsigned b) { return paint.colours[a] < paint.colours[b]; });
    putInOrder(blocksOf(order.size()), [&](size_t block) {
        Face face;
        for (size_t i = block * BLOCK; i < std::min(order.size(), (block + 1) * BLOCK); ++i) {
            const Piece& piece = paint.pieces[order[i]];
            if (i == 0 || paint.colours[order[i]] != paint.colours[order[i - 1]])
                putSurface(paint.surface, paint.palette[paint.colours[order[i]]]);
            if (makeFace(model.instances[piece.instance], piece.face, face))
                putFace(face, piece.part, options.flat);
        }
    });
}

void putPaint(const Options& options, const Model& model, const Paint& paint)
{
    putPlain(options, model, paint);
    putPieces(options, model, paint);
}

#include "formats/series_transport.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "formats/series_store.h"

namespace formats {
namespace {

constexpr std::size_t kStripBytes = std::size_t{256} << 10U;  // of output: stays in the second-level cache

template <typename Out>
constexpr DataType kTypeOf = sizeof(Out) == sizeof(float) ? DataType::kFloat32 : DataType::kUint16;

// Brings the voxels of the mask into the store, volume by volume: as stored, or already converted
// where that makes them smaller.
template <typename Out>
class VolumeTaker {
 public:
  VolumeTaker(const StoredForm& form, const VoxelRuns& kept, SeriesStore& store)
      : form_(form),
        kept_(kept),
        valueBytes_(bytesOf(form.type)),
        converts_(convertsFirst(form)),
        store_(store) {}

  [[nodiscard]] static bool convertsFirst(const StoredForm& form) { return bytesOf(form.type) > sizeof(Out); }
  [[nodiscard]] static StoredForm formInStore(const StoredForm& form) {
    return convertsFirst(form) ? StoredForm{kTypeOf<Out>, false, {}} : form;
  }

  void take(NiftiStream& stream) {
    if (!converts_ && kept_.isWholeImage())
      return stream.readStored(store_.nextVolume(), stream.volumeBytes());
    volume_.resize(stream.volumeBytes());
    stream.readStored(volume_.data(), volume_.size());
    take(volume_.data());
  }

  void take(const char* volume) {
    char* to = store_.nextVolume();
    for (const VoxelRun& run : kept_.runs()) {
      const char* from = volume + run.first * valueBytes_;
      if (converts_) {
        fits_ = convertRow(form_, from, run.count, reinterpret_cast<Out*>(to) + run.rank) && fits_;
      } else {
        std::memcpy(to + run.rank * valueBytes_, from, run.count * valueBytes_);
      }
    }
  }

  [[nodiscard]] bool fits() const { return fits_; }

 private:
  const StoredForm& form_;
  const VoxelRuns& kept_;
  std::size_t valueBytes_;
  bool converts_;
  SeriesStore& store_;
  std::vector<char> volume_;
  bool fits_ = true;
};

// Time courses in the order of the image, strip by strip.
template <typename Out>
class CourseWriter {
 public:
  CourseWriter(const StoredForm& form, std::size_t volumes, VtcWriter& writer)
      : form_(form),
        volumes_(volumes),
        writer_(writer),
        stripVoxels_(std::max<std::size_t>(kStripBytes / courseBytes(), 1)),
        strip_(stripVoxels_ * volumes_) {}

  void writeRun(const SeriesChunk& chunk, const VoxelRun& run) {
    leaveOut(run.first, chunk.waitedUpTo);
    for (std::size_t v = 0; v < run.count; v += stripVoxels_) {
      const std::size_t now = std::min(stripVoxels_, run.count - v);
      fits_ =
          toTimeCourses(form_, chunk.slab, run.rank - chunk.rank + v, now, volumes_, strip_.data()) && fits_;
      writer_.write(strip_.data(), now * courseBytes());
    }
    nextVoxel_ = run.first + run.count;
  }

  // Voxels up to `voxel` become 0: by writing where volumes have waited, by a hole behind that.
  void leaveOut(std::size_t voxel, std::size_t waitedUpTo) {
    const std::size_t from = nextVoxel_ * courseBytes(), to = voxel * courseBytes();
    const std::size_t clean = std::clamp(waitedUpTo, from, to);
    writeZeros(clean - from);
    writer_.skip(to - clean);
    nextVoxel_ = voxel;
  }

  [[nodiscard]] bool fits() const { return fits_; }

 private:
  [[nodiscard]] std::size_t courseBytes() const { return volumes_ * sizeof(Out); }

  void writeZeros(std::size_t bytes) {
    static constexpr char kZeros[kStripBytes] = {};
    for (; bytes > kStripBytes; bytes -= kStripBytes) writer_.write(kZeros, kStripBytes);
    writer_.write(kZeros, bytes);
  }

  const StoredForm& form_;
  std::size_t volumes_;
  VtcWriter& writer_;
  std::size_t stripVoxels_;
  std::vector<Out> strip_;
  std::size_t nextVoxel_ = 0;
  bool fits_ = true;
};

template <typename Out>
bool takeVolumes(const SeriesTransport& transport, const std::vector<char>& opening, NiftiStream& stream,
                 const VoxelRuns& kept, SeriesStore& store) {
  VolumeTaker<Out> taker(transport.form, kept, store);
  const std::size_t opened = opening.size() / stream.volumeBytes();
  for (std::size_t t = 0; t < opened; ++t) taker.take(opening.data() + t * stream.volumeBytes());
  for (std::size_t t = opened; t < transport.volumes; ++t) taker.take(stream);
  stream.finish();
  store.finish();
  return taker.fits();
}

template <typename Out>
bool writeCourses(const StoredForm& form, const SeriesTransport& transport, const VoxelRuns& kept,
                  SeriesStore& store, VtcWriter& writer) {
  CourseWriter<Out> courses(form, transport.volumes, writer);
  for (std::size_t c = 0; c < store.chunks() && courses.fits(); ++c) {
    const SeriesChunk chunk = store.chunk(c);
    kept.forEach(chunk.rank, chunk.count, [&](const VoxelRun& run) { courses.writeRun(chunk, run); });
  }
  courses.leaveOut(kept.imageVoxels(), 0);
  return courses.fits();
}

template <typename Out>
bool transportAs(const SeriesTransport& transport, const std::vector<char>& opening, NiftiStream& stream,
                 const VoxelRuns& kept, VtcWriter& writer) {
  const StoredForm form = VolumeTaker<Out>::formInStore(transport.form);
  // With a mask most of the file may stay a hole.
  if (kept.isWholeImage()) writer.reserve(kept.count() * transport.volumes * sizeof(Out));
  SeriesStore store(kept, transport.volumes, bytesOf(form.type), sizeof(Out), transport.memoryBytes, writer);
  return takeVolumes<Out>(transport, opening, stream, kept, store) &&
         writeCourses<Out>(form, transport, kept, store, writer);
}

}  // namespace

bool transportSeries(const SeriesTransport& transport, const std::vector<char>& opening, NiftiStream& stream,
                     const VoxelRuns& kept, VtcWriter& writer) {
  return transport.type == VtcType::kUint16
             ? transportAs<std::uint16_t>(transport, opening, stream, kept, writer)
             : transportAs<float>(transport, opening, stream, kept, writer);
}

}  // namespace formats

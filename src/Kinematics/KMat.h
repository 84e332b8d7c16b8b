#ifndef QUOLNARIS_KINEMATICS_KMAT_H_
#define QUOLNARIS_KINEMATICS_KMAT_H_

// Small matrices of compile-time size with copy-on-write storage, and an affine transform built
// from them. NAOKinematics is their one user; everything else computes with Matrix.
//
// Provides: GenMatrix (any size), ATMatrix (a homogeneous transform that stores neither its last
// row nor more than one copy of a shared block), transformations (the makers of transforms).
//
// A copy shares its source's storage; the first write through either end gives the writer a private
// copy. The reference counts are plain integers: handles must not cross threads.
//
// Storage comes from one free list per thread and block size, so that chains of transforms that
// have run once allocate nothing when they run again.

#include <cstddef>
#include <new>
#include <stdexcept>
#include <string>
#include <utility>

namespace KMath {
namespace KMat {

// An element outside the matrix was asked for. what() is origin followed by a fixed text.
class MatrixIndexOutOfBoundsException : public std::runtime_error {
 public:
  explicit MatrixIndexOutOfBoundsException(const std::string& origin);
};

// A matrix without a usable inverse was to be inverted. what() is origin followed by a fixed text.
class SingularMatrixInvertionException : public std::runtime_error {
 public:
  explicit SingularMatrixInvertionException(const std::string& origin);
};

// Plain row-major storage, not initialised.
template <typename T, int M, int N>
struct DataContainer {
  T mem[M][N];

  T& data(int i, int j) { return mem[i][j]; }
  const T& data(int i, int j) const { return mem[i][j]; }
  T* data(int i) { return mem[i]; }
  const T* data(int i) const { return mem[i]; }
  void zero() {
    for (auto& row : mem) {
      for (T& element : row) element = T(0);
    }
  }
};

// Storage with a count of the handles that refer to it.
template <typename D>
struct RefCounted : D {
  unsigned int counts;

  void inc() { ++counts; }
  void dec() { --counts; }
  bool isExclusive() const { return counts == 1; }

  static void* operator new(std::size_t size) {
    if (freeBlocks == nullptr) return ::operator new(size);
    FreeBlock* block = freeBlocks;
    freeBlocks = block->next;
    return block;
  }
  static void operator delete(void* memory) noexcept {
    freeBlocks = new (memory) FreeBlock{freeBlocks};
  }

 private:
  struct FreeBlock {
    FreeBlock* next;
  };
  inline static thread_local FreeBlock* freeBlocks = nullptr;
};

// Shared handle of storage. A null h stands for an all-zero matrix that was never written.
template <typename D>
class RefHandle {
 public:
  RefCounted<D>* h = nullptr;

  RefHandle() = default;
  RefHandle(const RefHandle& other) : h(other.h) {
    if (h != nullptr) h->inc();
  }
  // NOLINTNEXTLINE(bugprone-unhandled-self-assignment): a handle of the same storage stays.
  RefHandle& operator=(const RefHandle& other) {
    if (h != other.h) {
      release();
      h = other.h;
      if (h != nullptr) h->inc();
    }
    return *this;
  }
  ~RefHandle() { release(); }

  // Gives the storage up; the matrix is all zeros from here on.
  void cleanHandle() {
    release();
    h = nullptr;
  }

  // Makes the handle exclusive and writable. True only when the storage is new and its contents
  // are therefore still undefined.
  bool getHandle() {
    if (h == nullptr) {
      h = new RefCounted<D>;
      h->counts = 1;
      return true;
    }
    if (!h->isExclusive()) {
      auto* copy = new RefCounted<D>(*h);
      h->dec();
      copy->counts = 1;
      h = copy;
    }
    return false;
  }

 private:
  void release() {
    if (h == nullptr) return;
    if (h->isExclusive()) {
      delete h;
    } else {
      h->dec();
    }
  }
};

// Stands for the element (i, j) of a matrix that may be written: reading it goes through read and
// leaves shared storage shared, assigning to it goes through get. M is the type of the matrix.
template <typename T, typename M>
class COWRef {
 public:
  COWRef(M& matrix, int row, int column) : p(matrix), i(row), j(column) {}
  COWRef(const COWRef&) = default;

  operator T() const { return p.read(i, j); }
  COWRef& operator=(T value) {
    p.get(i, j) = value;
    return *this;
  }
  COWRef& operator=(const COWRef& other) { return *this = static_cast<T>(other); }

 private:
  M& p;
  const int i;
  const int j;
};

// What matrices of every size can do. Gen is the concrete matrix template.
template <template <typename, int, int> class Gen, typename T, int M, int N>
class BaseMatrix : public RefHandle<DataContainer<T, M, N>> {
 public:
  using Matrix = Gen<T, M, N>;

  // The element as a place to write to; the storage becomes exclusive first. Throws
  // MatrixIndexOutOfBoundsException when (i, j) lies outside.
  T& get(int i, int j) {
    requireInside(i, j);
    makeWritable();
    return this->h->data(i, j);
  }

  // The element's value, without making a copy of shared storage. A matrix never written gives 0,
  // whatever the indices; otherwise throws like get.
  T read(int i, int j) const {
    if (this->h == nullptr) return T(0);
    requireInside(i, j);
    return this->h->data(i, j);
  }

  COWRef<T, Matrix> operator()(int i, int j) { return {self(), i, j}; }
  T operator()(int i, int j) const { return read(i, j); }

  // Adds rop, or takes it away, element by element. If either side was never written, this matrix
  // stays as it is: a sum does not bring a never written matrix to life. Required, since ATMatrix
  // relies on it.
  Matrix& add(const BaseMatrix& rop) {
    return combine(rop, [](T left, T right) { return left + right; });
  }
  Matrix& sub(const BaseMatrix& rop) {
    return combine(rop, [](T left, T right) { return left - right; });
  }
  Matrix& operator+=(const BaseMatrix& rop) { return add(rop); }
  Matrix& operator-=(const BaseMatrix& rop) { return sub(rop); }

  // Multiplies every element by scalar; a matrix never written stays so.
  Matrix& scalar_mult(T scalar) {
    if (this->h == nullptr) return self();
    this->getHandle();
    for (int i = 0; i < M; ++i) {
      for (int j = 0; j < N; ++j) this->h->data(i, j) *= scalar;
    }
    return self();
  }

  // Writes zeros; unlike cleanHandle the matrix has storage afterwards.
  void zero() {
    this->getHandle();
    this->h->zero();
  }

  // Copies the rows of source into exclusive storage.
  void assign(const T (&source)[M][N]) {
    this->getHandle();
    for (int i = 0; i < M; ++i) {
      for (int j = 0; j < N; ++j) this->h->data(i, j) = source[i][j];
    }
  }

 private:
  Matrix& self() { return static_cast<Matrix&>(*this); }

  static void requireInside(int i, int j) {
    if (i < 0 || i >= M || j < 0 || j >= N) throwOutOfBounds();
  }

  [[noreturn]] static void throwOutOfBounds() {
    throw MatrixIndexOutOfBoundsException("BaseMatrix.get() ");
  }

  void makeWritable() {
    if (this->getHandle()) this->h->zero();
  }

  template <typename Operation>
  Matrix& combine(const BaseMatrix& rop, Operation operation) {
    if (this->h == nullptr || rop.h == nullptr) return self();
    const BaseMatrix right = rop;  // Keeps the operand alive and unchanged, also when it is *this.
    this->getHandle();
    for (int i = 0; i < M; ++i) {
      for (int j = 0; j < N; ++j) {
        this->h->data(i, j) = operation(this->h->data(i, j), right.h->data(i, j));
      }
    }
    return self();
  }
};

template <typename T, int M, int N>
class GenMatrix;

// Replaces the matrix by its inverse, the adjugate divided by the determinant. Throws
// SingularMatrixInvertionException unless the determinant is greater than 2.220446049250313e-16.
// The test is on the signed value and is required: reflections count as singular.
void invert_square_matrix(GenMatrix<double, 3, 3>& athis);

// The concrete matrix, M rows by N columns.
template <typename T, int M, int N>
class GenMatrix : public BaseMatrix<GenMatrix, T, M, N> {
 public:
  using BaseMatrix<GenMatrix, T, M, N>::operator();

  // Element i of a column.
  COWRef<T, GenMatrix> operator()(int i) requires(N == 1) { return {*this, i, 0}; }
  T operator()(int i) const requires(N == 1) { return this->read(i, 0); }

  // Writes the identity.
  void identity() requires(M == N) {
    this->zero();
    for (int i = 0; i < M; ++i) this->h->data(i, i) = T(1);
  }

  // Transposes in place.
  GenMatrix& fast_transp() requires(M == N) {
    if (this->h == nullptr) return *this;
    this->getHandle();
    for (int i = 0; i < M; ++i) {
      for (int j = 0; j < i; ++j) std::swap(this->h->data(i, j), this->h->data(j, i));
    }
    return *this;
  }

  // Inverts in place; throws like invert_square_matrix.
  GenMatrix& fast_invert() requires(M == N) {
    invert_square_matrix(*this);
    return *this;
  }
};

// Affine transform of size S: x -> A x + B. The last row (0, ..., 0, 1) is implied.
//
// The flags say what is known of the blocks, and operations use them to spare work: a set flag
// means that the block is all zeros or the identity. Every operation here keeps that true. Whoever
// writes into A or B directly calls check() afterwards.
//
// A new transform has no storage and no flag set; it gets its value from an operation of
// transformations, from identity(), from zero() or by assignment.
template <typename T, int S>
class ATMatrix {
 public:
  using Rotation = GenMatrix<T, S - 1, S - 1>;
  using Translation = GenMatrix<T, S - 1, 1>;

  Rotation A;
  Translation B;
  bool AisZero = false;
  bool AisIdentity = false;
  bool BisZero = false;

  // this = this * rop as homogeneous transforms, in the required steps. They differ from the
  // product on transforms without storage: if B was never written it stays so (A * rop.B is
  // dropped), and a rotation block without storage on either side leaves A as it is.
  ATMatrix& fast_mult(const ATMatrix& rop) {
    const Translation axd = times(A, rop.B);
    if (AisIdentity) {
      A = rop.A;
      AisZero = rop.AisZero;
      AisIdentity = rop.AisIdentity;
    } else if (!AisZero && A.h != nullptr && rop.A.h != nullptr) {
      multiplyRotation(rop.A);
      AisZero = rop.AisZero;
    }
    B.add(axd);
    if (BisZero) BisZero = rop.BisZero;
    return *this;
  }
  ATMatrix& operator*=(const ATMatrix& rop) { return fast_mult(rop); }

  // this = inverse of this. Throws SingularMatrixInvertionException, with the transform as it was,
  // when A has storage and no usable inverse.
  ATMatrix& fast_invert() {
    if (!AisIdentity && A.h != nullptr) A.fast_invert();
    if (BisZero) return *this;
    if (AisZero) {
      B.zero();
    } else if (AisIdentity) {
      B.scalar_mult(T(-1));
    } else {
      B = times(A, B);
      B.scalar_mult(T(-1));
    }
    return *this;
  }

  // Whether inverse(other) * this has the squared size of the identity. Required shortcut: squared
  // elements of every rotation sum to 3, so transforms that differ by a rotation alone pass, and
  // the test sees the distance between the two positions, to within a squared distance of
  // 2.220446049250313e-9. Throws when other can't be inverted.
  bool almostEqualTo(const ATMatrix& other) const {
    ATMatrix difference = other;
    difference.fast_invert();
    difference.fast_mult(*this);
    const T distance = squaredSize(difference.A) + squaredSize(difference.B) - T(3);
    return (distance < T(0) ? -distance : distance) < kAlmostEqual;
  }

  // Writes the identity.
  void identity() {
    A.identity();
    B.zero();  // With storage: fast_mult drops a translation that finds none.
    AisZero = false;
    AisIdentity = true;
    BisZero = true;
  }

  // Makes both blocks zero, without storage.
  void zero() {
    A.cleanHandle();
    B.cleanHandle();
    AisZero = true;
    AisIdentity = false;
    BisZero = true;
  }

  // Recomputes the flags from the contents. Required shortcut: the identity flag looks at the
  // diagonal alone, so any block whose diagonal is all 1 counts as the identity.
  void check() {
    AisZero = isZero(A);
    BisZero = isZero(B);
    AisIdentity = true;
    for (int i = 0; i < S - 1; ++i) {
      if (A.read(i, i) != T(1)) AisIdentity = false;
    }
  }

  // Elements of the S x S form. The last row can be read but not written: get throws
  // MatrixIndexOutOfBoundsException there. get drops the flags of the block, whose contents are
  // from then on the caller's.
  T& get(int i, int j) {
    if (j == S - 1) {
      T& element = B.get(i, 0);
      BisZero = false;
      return element;
    }
    T& element = A.get(i, j);
    AisZero = false;
    AisIdentity = false;
    return element;
  }
  T read(int i, int j) const {
    if (i == S - 1 && j >= 0 && j < S) return j == S - 1 ? T(1) : T(0);
    return j == S - 1 ? B.read(i, 0) : A.read(i, j);
  }
  COWRef<T, ATMatrix> operator()(int i, int j) { return {*this, i, j}; }
  T operator()(int i, int j) const { return read(i, j); }

  Translation get_translation() const { return B; }
  Rotation get_rotation() const { return A; }

  // w = A v + B; v and w may be the same column.
  void transform(const Translation& v, Translation& w) const {
    const Translation turned = times(A, v);
    w.zero();
    w.add(turned);
    w.add(B);
  }

  // Adds or takes away both blocks, element by element, as BaseMatrix does.
  ATMatrix& add(const ATMatrix& rop) {
    A.add(rop.A);
    B.add(rop.B);
    check();
    return *this;
  }
  ATMatrix& sub(const ATMatrix& rop) {
    A.sub(rop.A);
    B.sub(rop.B);
    check();
    return *this;
  }

 private:
  static constexpr T kAlmostEqual = T(2.220446049250313e-9);

  // a * v, without storage when either factor has none.
  static Translation times(const Rotation& a, const Translation& v) {
    Translation product;
    if (a.h == nullptr || v.h == nullptr) return product;
    product.getHandle();
    for (int i = 0; i < S - 1; ++i) {
      T sum = T(0);
      for (int k = 0; k < S - 1; ++k) sum += a.h->data(i, k) * v.h->data(k, 0);
      product.h->data(i, 0) = sum;
    }
    return product;
  }

  // A = A * rop, row by row through a scratch row. REQUIRES storage on both sides.
  void multiplyRotation(const Rotation& rop) {
    const Rotation right = rop;  // A second owner: A takes a private copy if it shares with rop.
    A.getHandle();
    for (int i = 0; i < S - 1; ++i) {
      T row[S - 1];
      for (int j = 0; j < S - 1; ++j) {
        row[j] = T(0);
        for (int k = 0; k < S - 1; ++k) row[j] += A.h->data(i, k) * right.h->data(k, j);
      }
      for (int j = 0; j < S - 1; ++j) A.h->data(i, j) = row[j];
    }
  }

  template <int N>
  static T squaredSize(const GenMatrix<T, S - 1, N>& block) {
    T sum = T(0);
    for (int i = 0; i < S - 1; ++i) {
      for (int j = 0; j < N; ++j) sum += block.read(i, j) * block.read(i, j);
    }
    return sum;
  }

  template <int N>
  static bool isZero(const GenMatrix<T, S - 1, N>& block) {
    for (int i = 0; i < S - 1; ++i) {
      for (int j = 0; j < N; ++j) {
        if (block.read(i, j) != T(0)) return false;
      }
    }
    return true;
  }
};

// The makers of transforms. Angles in radians, lengths in the caller's unit. Each writes its first
// argument whole, gives both blocks storage and sets the flags from all elements.
struct transformations {
  static constexpr double PI = 3.141592653589793;
  using Transform = ATMatrix<double, 4>;

  // A = identity, B = (x, y, z).
  static void makeTranslation(Transform& Transl, double x, double y, double z);

  // The elementary rotations, B = 0.
  static void makeRotationX(Transform& Rot, double angle);
  static void makeRotationY(Transform& Rot, double angle);
  static void makeRotationZ(Transform& Rot, double angle);

  // Rx(xAngle) * Ry(yAngle) * Rz(zAngle).
  static void makeRotationXYZ(Transform& Rot, double xAngle, double yAngle, double zAngle);
  // Rz(zAngle) * Ry(yAngle) * Rx(xAngle).
  static void makeRotationZYX(Transform& Rot, double zAngle, double yAngle, double xAngle);

  // The modified Denavit-Hartenberg transform Rx(alpha) * Tx(a) * Rz(theta) * Tz(d) (J. J. Craig,
  // "Introduction to Robotics: Mechanics and Control", chapter on manipulator kinematics).
  static void makeDHTransformation(Transform& Transf, double a, double alpha, double d,
                                   double theta);

  // A = Rz(rz) * Ry(ry) * Rx(rx), B = (px, py, pz).
  static void makeTransformation(Transform& Transf, double px, double py, double pz, double rx,
                                 double ry, double rz);
};

}  // namespace KMat
}  // namespace KMath

#endif  // QUOLNARIS_KINEMATICS_KMAT_H_

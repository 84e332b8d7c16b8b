#ifndef QUOLNARIS_MATHEMATICS_MATRIX_H_
#define QUOLNARIS_MATHEMATICS_MATRIX_H_

#include <cmath>
#include <map>
#include <ostream>
#include <utility>

#include "Mathematics/Vector.h"

// The elements of a matrix behind a counted handle: copies of a handle share them. With the last
// one they go to a pool that the next matrix of this shape takes from. The pool grows by many at
// once, so that no cycle allocates. No lock: the player has one thread.
template <int N, int M>
class SharedRows {
 public:
  SharedRows() : block(take()) {}
  SharedRows(const SharedRows& other) : block(other.block) { ++block->owners; }
  ~SharedRows() {
    if (--block->owners > 0) return;
    block->nextSpare = spare;
    spare = block;
  }
  SharedRows& operator=(const SharedRows&) = delete;

  double* operator[](int row) { return block->element[row]; }
  const double* operator[](int row) const { return block->element[row]; }

 private:
  struct Block {
    int owners = 1;
    Block* nextSpare = nullptr;
    double element[N][M] = {};
  };

  static Block* take() {
    if (spare == nullptr) spare = chain(new Block[kAtOnce]);
    Block* const taken = spare;
    spare = taken->nextSpare;
    *taken = Block();
    return taken;
  }

  static Block* chain(Block* blocks) {
    for (int i = 0; i + 1 < kAtOnce; ++i) blocks[i].nextSpare = &blocks[i + 1];
    return blocks;
  }

  static constexpr int kAtOnce = 256;
  static inline Block* spare = nullptr;
  Block* block;
};

// An N by M matrix of doubles; `Matrix<4, 4>` serves as a homogeneous transform.
//
// Copies share their elements: a matrix made from another one (passed by value, returned,
// initialised) reads and writes the rows of its source. The assignment alone copies elements, into
// the rows that the left side owns already, and so into every copy that shares them. Callers
// depend on this.
//
// Several operations do not mean what a reader expects, and none of them may be "repaired":
//   a new matrix      is 0 but for a 1 in the last row and column, so it is no identity;
//   matrix * matrix   is good to single precision only;
//   matrix * vector   applies the upper left 3x3 block alone: it rotates, it moves nothing;
//   inverseMatrix()   drops the translation.
// All angles are degrees. The pi of this class is 3.14159265.
template <int N, int M>
class Matrix {
 public:
  Matrix() { d[N - 1][M - 1] = 1.0; }
  Matrix(const Matrix&) = default;
  ~Matrix() = default;

  // Copies the elements into the rows of the left side; the result shares these.
  Matrix operator=(Matrix b) {
    return fill([&](int i, int j) { return b.d[i][j]; });
  }

  int getN() const { return N; }
  int getM() const { return M; }

  // The element at `row`, `col`, counted from 0. REQUIRES indices within the matrix.
  double& operator()(int row, int col) { return d[row][col]; }
  const double& operator()(int row, int col) const { return d[row][col]; }
  double get(int i, int j) const { return d[i][j]; }

  // Clears all elements, then sets the diagonal to 1.
  void identityMatrix() {
    fill([](int i, int j) { return i == j ? 1.0 : 0.0; });
  }

  // clang-format off
  // Sixteen elements in the order of rows.
  void setElements(float a00, float a01, float a02, float a03,
                   float a10, float a11, float a12, float a13,
                   float a20, float a21, float a22, float a23,
                   float a30, float a31, float a32, float a33)
    requires(N == 4 && M == 4)
  {
    const float rows[4][4] = {{a00, a01, a02, a03},
                              {a10, a11, a12, a13},
                              {a20, a21, a22, a23},
                              {a30, a31, a32, a33}};
    fill([&](int i, int j) { return rows[i][j]; });
  }
  // clang-format on

  // Elementwise. The assigning forms write into the rows of the left side.
  Matrix operator+(Matrix b) const {
    return Matrix().fill([&](int i, int j) { return d[i][j] + b.d[i][j]; });
  }
  Matrix operator-(Matrix b) const {
    return Matrix().fill([&](int i, int j) { return d[i][j] - b.d[i][j]; });
  }
  Matrix operator*(float f) const {
    return Matrix().fill([&](int i, int j) { return d[i][j] * f; });
  }
  Matrix operator/(float f) const {
    return Matrix().fill([&](int i, int j) { return d[i][j] / f; });
  }
  Matrix operator+=(Matrix b) {
    return fill([&](int i, int j) { return d[i][j] + b.d[i][j]; });
  }
  Matrix operator-=(Matrix b) {
    return fill([&](int i, int j) { return d[i][j] - b.d[i][j]; });
  }
  Matrix operator/=(float f) {
    return fill([&](int i, int j) { return d[i][j] / f; });
  }

  // The upper left 3x3 block applied to `v`. The translation and the last row take no part.
  Vector operator*(const Vector& v) const requires(N >= 3 && M >= 3) {
    float turned[3];
    for (int i = 0; i < 3; ++i) {
      turned[i] = static_cast<float>(d[i][0] * v.x + d[i][1] * v.y + d[i][2] * v.z);
    }
    return Vector(turned[0], turned[1], turned[2]);
  }

  // Rotations and translation, in degrees and in the caller's unit of length. The first four write
  // only the elements that they name and clear nothing: they are for a freshly made matrix, whose
  // zeros complete them.
  void rotationByX(double alfa) requires(N == 4 && M == 4) {
    const auto [c, s] = cosAndSin(alfa);
    d[0][0] = 1;
    d[1][1] = c;
    d[1][2] = -s;
    d[2][1] = s;
    d[2][2] = c;
    d[3][3] = 1;
  }
  void rotationByY(double beta) requires(N == 4 && M == 4) {
    const auto [c, s] = cosAndSin(beta);
    d[0][0] = c;
    d[0][2] = s;
    d[1][1] = 1;
    d[2][0] = -s;
    d[2][2] = c;  // (3, 3) stays as it is, unlike in the other two rotations
  }
  void rotationByZ(double theta) requires(N == 4 && M == 4) {
    const auto [c, s] = cosAndSin(theta);
    d[0][0] = c;
    d[0][1] = -s;
    d[1][0] = s;
    d[1][1] = c;
    d[2][2] = 1;
    d[3][3] = 1;
  }
  void translate(double x, double y, double z) requires(N == 4 && M == 4) {
    for (int i = 0; i < 4; ++i) d[i][i] = 1;
    d[0][3] = x;
    d[1][3] = y;
    d[2][3] = z;
  }

  // These multiply from the left: a chain of them reads from the last call outward.
  void rotateX(double a) requires(N == 4 && M == 4) {
    Matrix r;
    r.rotationByX(a);
    *this = r * *this;
  }
  void rotateY(double a) requires(N == 4 && M == 4) {
    Matrix r;
    r.rotationByY(a);
    *this = r * *this;
  }
  void rotateZ(double a) requires(N == 4 && M == 4) {
    Matrix r;
    r.rotationByZ(a);
    *this = r * *this;
  }
  void trans(double x, double y, double z) requires(N == 4 && M == 4) {
    Matrix t;
    t.translate(x, y, z);
    *this = t * *this;
  }

  // The determinant of the upper left 3x3 block, by the rule of Sarrus.
  double operator~() const requires(N == 4 && M == 4) {
    return d[0][0] * d[1][1] * d[2][2] + d[0][1] * d[1][2] * d[2][0] + d[0][2] * d[1][0] * d[2][1] -
           d[0][2] * d[1][1] * d[2][0] - d[0][0] * d[1][2] * d[2][1] - d[0][1] * d[1][0] * d[2][2];
  }

  // The inverse of the upper left 3x3 block (adjugate over determinant, in float), with a zero
  // translation and 1 / determinant at (3, 3). The translation of this matrix is lost: the forward
  // kinematics is written against that. A singular block gives infinities.
  Matrix inverseMatrix() const requires(N == 4 && M == 4) {
    // Minor of the block that leaves the rows i, k and the columns j, l.
    const auto minor = [&](int i, int j, int k, int l) {
      return static_cast<float>(d[i][j] * d[k][l] - d[i][l] * d[k][j]);
    };
    Matrix adjugate;
    // clang-format off
    adjugate.setElements(minor(1, 1, 2, 2), minor(2, 1, 0, 2), minor(0, 1, 1, 2), 0,
                         minor(1, 2, 2, 0), minor(0, 0, 2, 2), minor(0, 2, 1, 0), 0,
                         minor(1, 0, 2, 1), minor(0, 1, 2, 0), minor(0, 0, 1, 1), 0,
                         0,                 0,                 0,                 1);
    // clang-format on
    return adjugate * (1.0f / static_cast<float>(~*this));
  }

  // The full inverse, by Gauss-Jordan elimination beside an identity, without a search for a good
  // pivot: the next lower row with a pivot other than 0 serves. A singular matrix gives elements
  // that are not finite.
  Matrix newinverse() const requires(N == M) {
    Matrix left;
    left = *this;
    Matrix right;
    right.identityMatrix();
    for (int pivot = 0; pivot < N; ++pivot) {
      for (int row = pivot + 1; left.d[pivot][pivot] == 0 && row < N; ++row) {
        left.swapRows(pivot, row);
        right.swapRows(pivot, row);
      }
      for (int row = 0; row < N; ++row) {
        if (row == pivot || left.d[row][pivot] == 0) continue;
        const double factor = left.d[row][pivot] / left.d[pivot][pivot];
        left.scaleRow(pivot, factor);  // in place, and so until the division below
        right.scaleRow(pivot, factor);
        left.subtractRow(pivot, row);
        right.subtractRow(pivot, row);
      }
    }
    for (int row = 0; row < N; ++row) right.scaleRow(row, 1.0 / left.d[row][row]);
    return right;
  }

 private:
  template <int A, int B>
  friend class Matrix;

  // Sets every element to `element(i, j)`, row by row.
  template <typename Element>
  Matrix fill(Element element) {
    for (int i = 0; i < N; ++i) {
      for (int j = 0; j < M; ++j) d[i][j] = element(i, j);
    }
    return *this;
  }

  static std::pair<double, double> cosAndSin(double degrees) {
    const double radians = degrees * 3.14159265 / 180.0;
    return {std::cos(radians), std::sin(radians)};
  }

  void scaleRow(int row, double factor) {
    for (int j = 0; j < M; ++j) d[row][j] *= factor;
  }
  void subtractRow(int from, int row) {
    for (int j = 0; j < M; ++j) d[row][j] -= d[from][j];
  }
  void swapRows(int one, int other) {
    for (int j = 0; j < M; ++j) std::swap(d[one][j], d[other][j]);
  }

  SharedRows<N, M> d;
};

// The product. Each element is summed up in a float, rounded at every addition, so results are
// good to single precision only.
template <int N, int M, int K>
Matrix<N, K> operator*(Matrix<N, M> a, Matrix<M, K> b) {
  Matrix<N, K> product;
  for (int i = 0; i < N; ++i) {
    for (int j = 0; j < K; ++j) {
      float s = 0;
      for (int k = 0; k < M; ++k) s = static_cast<float>(s + a(i, k) * b(k, j));
      product(i, j) = s;
    }
  }
  return product;
}

// The power of `a`, by squaring. REQUIRES n >= 1.
template <int N>
requires(N == 4 || N == 6) Matrix<N, N>
operator^(Matrix<N, N>& a, int n) {
  std::map<int, Matrix<N, N>> powers;
  powers.emplace(1, a);
  int reached = 1;
  for (; reached <= n / 2; reached *= 2) {
    powers.emplace(2 * reached, powers.at(reached) * powers.at(reached));
  }
  if (reached >= n) return powers.at(reached);
  Matrix<N, N> rest = a ^ (n - reached);
  return powers.at(reached) * rest;
}

// Writes each element and a tab, and ends (and flushes) the line after each row.
template <int N, int M>
std::ostream& operator<<(std::ostream& out, Matrix<N, M> m) {
  for (int i = 0; i < N; ++i) {
    for (int j = 0; j < M; ++j) out << m(i, j) << '\t';
    out << std::endl;
  }
  return out;
}

#endif  // QUOLNARIS_MATHEMATICS_MATRIX_H_

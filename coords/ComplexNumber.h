// A complex number as two doubles, with the four operations the New Zealand Map Grid
// series need.
#pragma once

namespace kx {

struct ComplexNumber {
  double re;
  double im;

  static ComplexNumber Add(ComplexNumber u, ComplexNumber v) { return {u.re + v.re, u.im + v.im}; }
  static ComplexNumber Multiply(ComplexNumber u, ComplexNumber v) {
    return {u.re * v.re - u.im * v.im, u.re * v.im + u.im * v.re};
  }
  static ComplexNumber Divide(ComplexNumber u, ComplexNumber v) {
    const double q = v.re * v.re + v.im * v.im;
    return Multiply(u, {v.re / q, -v.im / q});
  }
  static ComplexNumber Scale(ComplexNumber u, double s) { return {u.re * s, u.im * s}; }
};

}  // namespace kx

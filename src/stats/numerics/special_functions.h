// Logarithm of the gamma function and the incomplete beta function.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace numerics {

/// ln Gamma(x) for x > 0, by the approximation of C. Lanczos (SIAM Journal on Numerical Analysis,
/// series B, 1, 1964, 86-96) with g = 5 and 6 coefficients, whose relative error stays below 2e-10.
/// Computed in double; argument and result are floats, which limits the accuracy of what uses it.
[[nodiscard]] float gammln(float x);

/// The regularised incomplete beta function I_x(a, b) for a, b > 0, in double. For a <= 0 it is the
/// limit 1, for b <= 0 the limit 0. An x outside 0 to 1 ends the program with "FATAL ERROR: Bad x
/// in routine betai." and gives 0.
///
/// Probabilities follow from it (Abramowitz and Stegun, 26.5 and 26.7): the two-sided p of t with n
/// degrees of freedom is I_x(n / 2, 1 / 2) with x = n / (n + t^2); the p of F with (n1, n2) is
/// I_x(n2 / 2, n1 / 2) with x = n2 / (n2 + n1 F).
[[nodiscard]] double betai(double a, double b, double x);

/// The continued fraction of betai (Abramowitz and Stegun, 26.5.8), to be used for x < (a + 1) / (a
/// + b + 2). Ends the program with "FATAL ERROR: a or b too big, or MAXIT too small in betacf", and
/// gives 0, when it has not converged after 10000 steps; it needs about the square root of the
/// larger parameter.
[[nodiscard]] double betacf(double a, double b, double x);

} // namespace numerics

# SPDX-License-Identifier: Apache-2.0
"""Prints dbscan.tsv: random points and their labels from scikit-learn, which also counts a point as its own neighbour
at a distance of eps or less. Needs scikit-learn."""
import numpy as np
import sklearn
from sklearn.cluster import DBSCAN

# Seed, points, columns, eps, minimum points.
CASES = [(1, 60, 2, 0.6, 3), (2, 80, 3, 0.8, 4), (3, 50, 1, 0.05, 2), (4, 70, 2, 0.9, 6)]

print(f"# Random points and their clusters, printed by dbscan.py with scikit-learn {sklearn.__version__}.")
print("case\teps\tmin_points\tlabel\tcolumns")
for case, (seed, count, columns, eps, min_points) in enumerate(CASES):
    random = np.random.default_rng(seed)
    centres = random.uniform(-2, 2, (4, columns))
    points = np.round(centres[random.integers(0, 4, count)] + random.normal(0, 0.5, (count, columns)), 4)
    for label, point in zip(DBSCAN(eps=eps, min_samples=min_points).fit_predict(points), points):
        print(case, eps, min_points, label, *point, sep="\t")

import numpy as np
import numpy.typing as npt

class PeakTable:
    def __init__(self, spectrum_count: int) -> None: ...
    def take(self) -> npt.NDArray[np.uint8]: ...

class FragmentNetworks:
    def __init__(self, paths: list[str], cysteine: float) -> None: ...
    def longest_peptide(self, charge: int) -> int: ...
    def predict(
        self, table: PeakTable, indices: list[int], peptides: list[str], charge: int, isotopes: bool
    ) -> None: ...
    def spectrum(self, peptide: str, charge: int) -> tuple[npt.NDArray[np.float64], npt.NDArray[np.float64]]: ...

class LimitsOptions:
    model_file_path: str
    max_point_count: int
    probability_tolerance: float
    dbscan_epsilon: float
    dbscan_min_points: int
    min_point_count: int
    smoothing_pass_count: int
    gaussian_filter_size: int
    limit_threshold: float
    def __init__(self) -> None: ...

class Limits:
    def __init__(self, options: LimitsOptions) -> None: ...
    def by_network(
        self, times: npt.NDArray[np.float64], intensities: npt.NDArray[np.float64], hint: float
    ) -> tuple[npt.NDArray[np.float64], npt.NDArray[np.float64]]: ...
    def by_walk(
        self, times: npt.NDArray[np.float64], intensities: npt.NDArray[np.float64]
    ) -> tuple[npt.NDArray[np.float64], npt.NDArray[np.float64]]: ...

class SplitterOptions:
    model_file_path: str
    max_point_count: int
    probability_tolerance: float
    gaussian_filter_size: int
    smoothing_pass_count: int
    def __init__(self) -> None: ...

class Splits:
    def __init__(self, options: SplitterOptions) -> None: ...
    def find(
        self, times: npt.NDArray[np.float64], intensities: npt.NDArray[np.float64]
    ) -> tuple[npt.NDArray[np.float64], npt.NDArray[np.float64]]: ...

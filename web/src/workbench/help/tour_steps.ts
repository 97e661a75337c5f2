// The steps of the tour.

export interface TourStep {
  readonly about: string; // a selector: what is marked
  readonly title: string;
  readonly words: string;
}

export const kSteps: readonly TourStep[] = [
  {
    about: '[data-part="planes"]',
    title: "Drag the reference",
    words:
      "Hold the mouse button on a plane and move: the reference, outlined in cyan, goes where the " +
      "mouse is, and the map of every voxel is computed anew while it moves. With Shift you move the " +
      "crosshair instead.",
  },
  {
    about: ".badge-bar",
    title: "First fast, then honest",
    words:
      "While the reference moves, maps rest on one null draw per voxel and are called provisional. " +
      "When it rests, the calibrated maps replace them. Read and report those alone.",
  },
  {
    about: ".explore-legend",
    title: "Colour and opacity",
    words:
      "Colour is the value, with both signs in words beside the bar; opacity is its significance. " +
      "What is led is predicted: prediction supports a hypothesis of influence and does not prove " +
      "one.",
  },
  {
    about: ".threshold-group",
    title: "The threshold",
    words:
      "Choose the false discovery rate q, or a value of your own, which promises nothing. The " +
      "brackets [ and ] change it from the keyboard, space hides the map.",
  },
  {
    about: ".clusters",
    title: "Clusters and the voxel",
    words:
      "The table follows the threshold; Show takes the crosshair to a peak. Below are the series of " +
      "the voxel under the crosshair, their correlation, the fitted models, and where the voxel " +
      "stands among its null draws.",
  },
  {
    about: ".comparing",
    title: "Compare",
    words:
      "Pin a calibrated map and move on: both are shown with one crosshair, or as their difference. " +
      "Or compare two conditions of the same reference.",
  },
  {
    about: ".saving",
    title: "Save what you found",
    words:
      "As a request, from which tavmap run makes the same maps with their report; as one page that " +
      "stands alone; as a picture. Press ? for the keys, and the question marks for a few words on " +
      "each control.",
  },
];

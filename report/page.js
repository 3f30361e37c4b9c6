// Draws the graphics of the page from the result that the page contains, and keeps one selection for
// all of them. It computes no value of the calibration.
'use strict';
(() => {

const root = document.documentElement;
root.dataset.script = 'on';
const byId = (id) => document.getElementById(id);
const result = JSON.parse(byId('data').textContent);
const cross = result.crossCheck || null;
const isNumber = (value) => typeof value === 'number' && Number.isFinite(value);
const isList = (value, length) => Array.isArray(value) && value.length === length && value.every(isNumber);
const [width, height] = isList(result.imageSize, 2) ? result.imageSize : [1920, 1080];
root.style.setProperty('--aspect', width / height);
let colour = (name) => getComputedStyle(root).getPropertyValue('--' + name).trim();
const fixed = (value, decimals) => isNumber(value) ? value.toFixed(decimals).replace('-', '−') : '–';

// The photographs, as the page lists them.
const photographs = [...document.querySelectorAll('.photograph')].map((element, i) => ({
  element,
  number: i + 1,  // by place in the result's list
  state: element.dataset.state,
  name: element.dataset.name,
  reason: element.dataset.reason,
  isReprojected: element.dataset.reprojected === 'true',
  check: cross && (result.photographs[i] || {}).crossCheck || null,
}));
// Each detected corner, where the result predicts it, and where the cross-check does. Without a
// result, or in an older file, both are the cross-check's.
const pairsOf = ({check}) => {
  const {corners, predicted, byResult} = check || {};
  const shown = byResult?.length ? byResult : predicted || [];
  return (corners || []).map((corner, i) => [corner, shown[i], (predicted || [])[i]])
      .filter(([corner]) => isList(corner, 2));
};
const pixelsOf = ({check}) => check && isNumber(check.resultPixels) ? check.resultPixels : check?.predictedPixels;
// The result and the cross-check predict the corners so far from each other that it is seen.
const areApart = ({check}) => check && isNumber(check.resultPixels) && Math.abs(check.resultPixels - check.predictedPixels) > .25;
const stateTexts = {
  kept: 'agrees', spare: 'agrees, left out by the filter', apart: 'does not agree',
  out: 'left out of the second run', unused: 'not used', missing: 'not usable',
};
const stateText = ({state, reason}) => stateTexts[state] + (reason && state !== 'spare' ? ': ' + reason : '');
const valuesText = (photograph) => {
  const {check, state} = photograph;
  const ofCheck = areApart(photograph) ? `cross-check: ${fixed(check.predictedPixels, 2)} px` : [];
  const parts = check ? [fixed(pixelsOf(photograph), 2) + ' px'].concat(ofCheck, fixed(check.mm, 2) + ' mm', fixed(check.degrees, 3) + '°') : [];
  if (state !== 'kept' || check) parts.push(stateText(photograph));
  return parts.join(' · ');
};


// One selection for the whole page.

let selected = null;  // a photograph
const selectionListeners = [];
const select = (photograph) => {
  selected = photograph;
  document.body.dataset.selected = photograph ? photograph.number : '';
  for (const {element, number} of photographs) {
    const isSelected = photograph !== null && number === photograph.number;
    element.classList.toggle('selected', isSelected);
    const open = element.querySelector('.open');
    open.setAttribute('aria-pressed', String(isSelected));
  }
  byId('selection').hidden = !photograph;
  if (photograph) {
    byId('selection-number').textContent = photograph.number;
    byId('selection-name').textContent = photograph.name.split(/[\\/]/).pop();
    byId('selection-values').textContent = valuesText(photograph);
  }
  selectionListeners.forEach((listener) => listener());
  if (byId('enlarged').open) enlarge();
};
const selectStep = (step) => {
  if (!photographs.length) return;
  const at = selected ? photographs.indexOf(selected) + step : step > 0 ? 0 : -1;
  select(photographs[(at + photographs.length) % photographs.length]);
};
const selectByKeys = (event) => {
  const step = {ArrowRight: 1, ArrowLeft: -1}[event.key];
  if (step) {
    event.preventDefault();
    selectStep(step);
  }
};
byId('selection-previous').onclick = byId('enlarged-previous').onclick = () => selectStep(-1);
byId('selection-next').onclick = byId('enlarged-next').onclick = () => selectStep(1);
byId('selection-close').onclick = () => select(null);


// SVG, element by element: no text is ever parsed as markup.

const svgElement = (name, attributes, parent, text) => {
  const element = document.createElementNS('http://www.w3.org/2000/svg', name);
  for (const [key, value] of Object.entries(attributes)) element.setAttribute(key, value);
  if (text !== undefined) element.textContent = text;
  if (parent) parent.appendChild(element);
  return element;
};
const empty = (svg, ...viewBox) => {
  svg.replaceChildren();
  svg.setAttribute('viewBox', viewBox.join(' '));
};
const round = (value) => value.toFixed(1);
const segment = ([x, y], [u, v]) => `M${round(x)} ${round(y)}L${round(u)} ${round(v)}`;
const circle = ([x, y], r) => `M${round(x - r)} ${round(y)}a${r} ${r} 0 1 0 ${2 * r} 0a${r} ${r} 0 1 0 ${-2 * r} 0`;
const cross2 = ([x, y], r) => segment([x - r, y - r], [x + r, y + r]) + segment([x - r, y + r], [x + r, y - r]);

const drawCorners = (svg, photograph, size) => {
  empty(svg, 0, 0, width, height);
  const pairs = pairsOf(photograph);
  const line = {fill: 'none', 'stroke-width': size / 4};
  const known = pairs.filter(([, predicted]) => isList(predicted, 2));
  svgElement('path', {...line, stroke: colour('missing'), d: known.map(([a, b]) => segment(a, b)).join('')}, svg);
  svgElement('path', {...line, stroke: colour('kept'), d: pairs.map(([a]) => circle(a, size)).join('')}, svg);
  svgElement('path', {...line, stroke: colour('apart'), d: known.map(([, b]) => cross2(b, size * .7)).join('')}, svg);
  if (areApart(photograph)) {
    const checked = pairs.filter(([,, c]) => isList(c, 2));
    svgElement('path', {fill: colour('select'), class: 'by-check', d: checked.map(([,, c]) => circle(c, size * .35)).join('')}, svg);
  }
};


// The gallery, and one photograph enlarged.

// How the photograph lies in its frame: scale 1 shows all of it.
const view = {scale: 1, x: 0, y: 0};
const fullScale = () => {
  const shown = byId('enlarged-image').clientWidth;
  return shown ? Math.max(2, width / shown) : 2;
};
const applyView = () => {
  const frame = byId('enlarged-frame');
  const least = (size) => size * (1 - view.scale);
  view.x = Math.min(0, Math.max(least(frame.clientWidth), view.x));
  view.y = Math.min(0, Math.max(least(frame.clientHeight), view.y));
  byId('enlarged-zoomed').style.transform = `translate(${view.x}px, ${view.y}px) scale(${view.scale})`;
  // The marks keep their size on the screen, so that they show less and less of a pixel's error.
  drawCorners(byId('enlarged-overlay'), selected, height / 110 / view.scale);
};
// The point of the frame stays where it is.
const zoomTo = (scale, x, y) => {
  const wanted = Math.min(Math.max(scale, 1), 4 * fullScale());
  view.x = x - (x - view.x) * wanted / view.scale;
  view.y = y - (y - view.y) * wanted / view.scale;
  view.scale = wanted;
  applyView();
};
const placeInFrame = (event) => {
  const box = byId('enlarged-frame').getBoundingClientRect();
  return [event.clientX - box.left, event.clientY - box.top];
};
byId('enlarged-frame').addEventListener('wheel', (event) => {
  event.preventDefault();
  zoomTo(view.scale * Math.exp(-event.deltaY / 400), ...placeInFrame(event));
}, {passive: false});
byId('enlarged-frame').ondblclick = (event) => {
  zoomTo(view.scale > 1.01 ? 1 : fullScale(), ...placeInFrame(event));
};
byId('enlarged-frame').onpointerdown = (event) => {
  byId('enlarged-frame').setPointerCapture(event.pointerId);
};
byId('enlarged-frame').onpointermove = (event) => {
  if (!event.buttons || !selected) return;
  view.x += event.movementX;
  view.y += event.movementY;
  applyView();
};

// The original if its file is still there, otherwise what the page holds of it.
const showImage = ({element}) => {
  const image = byId('enlarged-image');
  const link = byId('enlarged-link');
  const thumbnail = element.querySelector('img');
  const {original} = element.dataset;
  const say = (text) => { byId('enlarged-source').textContent = text; };
  const showEmbedded = () => {
    image.onload = image.onerror = null;
    if (thumbnail) image.src = thumbnail.src; else image.removeAttribute('src');
    link.hidden = true;
    const size = thumbnail ? `Shown is what this page holds: ${thumbnail.naturalWidth} pixels of its width of ${width}. ` : '';
    const hint = thumbnail && thumbnail.naturalWidth >= Math.min(width, 1280) ? ''
      : 'To judge the sharpness, write the page again beside the photographs with --page-photographs full.';
    say(`The original is not where it was when this page was written. ${size}${hint}`);
  };
  if (image.dataset.of === element.dataset.number) return;
  image.dataset.of = element.dataset.number;
  Object.assign(view, {scale: 1, x: 0, y: 0});
  if (thumbnail) image.src = thumbnail.src; else image.removeAttribute('src');
  link.hidden = !original;
  say('');
  if (!original) return showEmbedded();
  link.setAttribute('href', original);
  const loader = new Image();
  loader.onload = () => {
    if (image.dataset.of !== element.dataset.number) return;
    image.src = loader.src;
    say(`The original, ${loader.naturalWidth} × ${loader.naturalHeight} pixels.`);
  };
  loader.onerror = () => { if (image.dataset.of === element.dataset.number) showEmbedded(); };
  loader.src = original;
};
const enlarge = () => {
  const {check} = selected;
  byId('enlarged-number').textContent = selected.number;
  byId('enlarged-title').textContent = selected.name;
  byId('enlarged-values').textContent = valuesText(selected)
    + (check ? '. Circles: detected corners; crosses: where the result predicts them' + (areApart(selected) ? '; dots: where the cross-check does.' : '.') : '');
  showImage(selected);
  applyView();
  byId('enlarged-overlay').style.display = byId('enlarged-corners').checked ? '' : 'none';
};
const openEnlarged = () => {
  if (!selected) return;
  enlarge();
  if (!byId('enlarged').open) byId('enlarged').showModal();
  applyView();
};
byId('selection-open').onclick = openEnlarged;
byId('enlarged-close').onclick = () => byId('enlarged').close();
byId('enlarged-corners').onchange = enlarge;
byId('enlarged').onkeydown = selectByKeys;
byId('enlarged').onclick = (event) => {
  if (event.target === byId('enlarged')) byId('enlarged').close();
};
const drawGallery = () => {
  for (const photograph of photographs) {
    const frame = photograph.element.querySelector('.frame');
    frame.querySelector('svg')?.remove();
    // A reprojected image already shows its corners.
    if (photograph.check && !(photograph.isReprojected && frame.querySelector('img'))) {
      const svg = svgElement('svg', {'aria-hidden': 'true', preserveAspectRatio: 'xMidYMid slice'});
      frame.insertBefore(svg, frame.querySelector('.open'));
      drawCorners(svg, photograph, height / 48);
    }
  }
};
for (const photograph of photographs) {
  photograph.element.querySelector('.open').onclick = () => {
    select(photograph);
    openEnlarged();
  };
}


// Photographs to leave out of the next calibration.

const quoted = (word) => /^[\w\-./:=,+@%\\\u0080-\uffff]+$/.test(word) ? word : '"' + word.replace(/["$`]/g, '\\$&') + '"';
const fileOf = (name) => name.split(/[\\/]/).pop();
const withoutEnding = (file) => file.replace(/(.)\.[^.]*$/, '$1');
// As short as it can be without meaning another one.
const shortestName = ({name}) => {
  const others = new Set(photographs.map((other) => other.name));
  others.delete(name);
  const isFree = (short) => [...others].every((other) => fileOf(other) !== short && withoutEnding(fileOf(other)) !== short);
  return [withoutEnding(fileOf(name)), fileOf(name)].find(isFree) || name;
};
const showLeaveOut = () => {
  const names = photographs.filter(({element}) => element.querySelector('.leave-out')?.checked).map(shortestName);
  byId('leave-out').hidden = !names.length;
  // The folder of the run has all options; of two runs, that of the first with all photographs.
  const log = (result.firstRun || result).log || '';
  const config = log.slice(0, log.length - fileOf(log).length) + 'calibrate.toml';
  const command = ['trackedcam', 'calibrate', '--config', quoted(config), quoted('--exclude=' + names.join(','))].join(' ');
  byId('leave-out-command').textContent = command;
  byId('leave-out-copy').dataset.copy = command;
};
for (const box of document.querySelectorAll('.leave-out')) box.onchange = showLeaveOut;


// The selected photograph next to the scene.

const directions = ['right', 'lower right', 'bottom', 'lower left', 'left', 'upper left', 'top', 'upper right'];
// From the right, by the bottom.
const directionText = (degrees) => directions[(Math.round(degrees / 45) % 8 + 8) % 8];

const showChosen = () => {
  if (!byId('chosen')) return;
  byId('chosen').hidden = !selected;
  byId('chosen-none').hidden = Boolean(selected);
  if (!selected) return;
  const check = selected.check || {};
  const thumbnail = selected.element.querySelector('img');
  byId('chosen-image').hidden = !thumbnail;
  byId('chosen-empty').hidden = Boolean(thumbnail);
  if (thumbnail) byId('chosen-image').src = thumbnail.src;
  drawCorners(byId('chosen-overlay'), selected, height / 60);
  byId('chosen-number').textContent = selected.number;
  byId('chosen-name').textContent = selected.name.split(/[\\/]/).pop();
  byId('chosen-state').textContent = stateText(selected);
  byId('chosen-state').className = selected.state;
  byId('chosen-pixels').textContent = fixed(pixelsOf(selected), 2) + ' px';
  byId('chosen-check').textContent = fixed(check.predictedPixels, 2) + ' px';
  byId('chosen-difference').textContent = `${fixed(check.mm, 2)} mm, ${fixed(check.degrees, 3)}°`;
  byId('chosen-tilt').textContent = `${fixed(check.tiltDegrees, 0)}°${isNumber(check.tiltDirectionDegrees) ? ' to the ' + directionText(check.tiltDirectionDegrees) : ''}`;
  byId('chosen-roll').textContent = fixed(check.rollDegrees, 0) + '°';
  byId('chosen-distance').textContent = fixed(check.distanceMetres, 2) + ' m';
};
selectionListeners.push(showChosen);


// Buttons that copy.

const copyText = async (text) => {
  try {
    await navigator.clipboard.writeText(text);
  } catch {
    // Not every browser allows that to a page from a file.
    const area = document.createElement('textarea');
    area.value = text;
    document.body.appendChild(area);
    area.select();
    document.execCommand('copy');
    area.remove();
  }
};
for (const button of document.querySelectorAll('.copy')) {
  const label = button.textContent;
  button.onclick = async () => {
    await copyText(button.id === 'copy-json' ? byId('data').textContent : button.dataset.copy);
    button.textContent = 'Copied';
    setTimeout(() => { button.textContent = label; }, 1500);
  };
}


// 2. The scene. World: y up, the chart facing z.

const scene = {request() {}, recolour() {}, still() {}};
const makeScene = () => {
  const canvas = byId('scene-canvas');
  const views = photographs.filter(({check}) => check && isList(check.transformCamChart, 16));
  if (!canvas || !views.length) {
    throw new Error('The result has no camera positions.');
  }
  const probe = document.createElement('canvas');
  if (!(probe.getContext('webgl') || probe.getContext('experimental-webgl'))) {
    byId('scene-note').hidden = false;
    return;
  }
  const matrix = (list) => new THREE.Matrix4().set(...list);
  const inverse = (m) => new THREE.Matrix4().getInverse(m);
  const inputs = result.inputs || {};
  const square = isNumber(inputs.squareMetres) ? inputs.squareMetres : .03;
  const [columns, rows] = isList(inputs.board, 2) ? inputs.board : [9, 6];
  const boardCentre = new THREE.Vector3((columns - 1) * square / 2, (rows - 1) * square / 2, 0);

  const world = new THREE.Scene();
  const chart = new THREE.Group();  // in the axes of Chart: x right, y down, z into the board
  chart.rotation.x = Math.PI;
  world.add(chart);
  const paints = [];  // to call again when the colours change
  const paint = (what) => { paints.push(what); what(); };

  const renderer = new THREE.WebGLRenderer({canvas, antialias: true, preserveDrawingBuffer: true});
  paint(() => renderer.setClearColor(colour('stage')));
  const camera = new THREE.PerspectiveCamera(36, 1, .01, 100);
  let isWanted = false;
  const render = () => {
    isWanted = false;
    const box = canvas.getBoundingClientRect();
    if (!box.width) return;
    renderer.setPixelRatio(Math.min(2, window.devicePixelRatio || 1));
    renderer.setSize(box.width, box.height, false);
    camera.aspect = box.width / box.height;
    camera.updateProjectionMatrix();
    renderer.render(world, camera);
  };
  scene.request = () => {
    if (!isWanted) {
      isWanted = true;
      requestAnimationFrame(render);
    }
  };

  const lines = (points, material, parent) => {
    const geometry = new THREE.BufferGeometry().setFromPoints(points);
    const object = new THREE.LineSegments(geometry, material);
    if (material.isLineDashedMaterial) object.computeLineDistances();
    parent.add(object);
    return object;
  };
  const label = (text, parent, place, size, draw, isLasting = true) => {
    const picture = document.createElement('canvas');
    const material = new THREE.SpriteMaterial({sizeAttenuation: false, depthTest: false, transparent: true});
    const sprite = new THREE.Sprite(material);
    sprite.repaint = () => {
      const pen = picture.getContext('2d');
      const font = '600 44px system-ui, "DejaVu Sans", sans-serif';
      pen.font = font;
      picture.width = pen.measureText(text).width + 28;
      picture.height = 60;
      pen.font = font;
      pen.textAlign = 'center';
      pen.textBaseline = 'middle';
      draw(pen, picture.width, picture.height);
      pen.fillText(text, picture.width / 2, 32);
      material.map?.dispose();
      material.map = new THREE.CanvasTexture(picture);
      material.map.minFilter = THREE.LinearFilter;
      material.needsUpdate = true;
      sprite.scale.set(size * picture.width / 60, size, 1);
    };
    if (isLasting) paint(sprite.repaint); else sprite.repaint();
    sprite.position.copy(place);
    parent.add(sprite);
    return sprite;
  };
  const plainText = (pen, w, h) => {
    pen.fillStyle = colour('stage');
    pen.globalAlpha = .75;
    pen.fillRect(0, 0, w, h);
    pen.globalAlpha = 1;
    pen.fillStyle = colour('ink');
  };

  // The chart.
  const texture = document.createElement('canvas');
  texture.width = texture.height = 1024;  // a power of two, which mipmaps need
  const boardMaterial = new THREE.MeshBasicMaterial({});
  paint(() => {
    const pen = texture.getContext('2d');
    pen.setTransform(texture.width / (columns + 3), 0, 0, texture.height / (rows + 3), 0, 0);  // in squares
    pen.fillStyle = colour('board-light');
    pen.fillRect(0, 0, columns + 3, rows + 3);
    pen.fillStyle = colour('board-dark');
    for (let r = 0; r <= rows; ++r) {
      for (let c = r % 2; c <= columns; c += 2) pen.fillRect(c + 1, r + 1, 1, 1);
    }
    boardMaterial.map?.dispose();
    boardMaterial.map = new THREE.CanvasTexture(texture);
    boardMaterial.map.anisotropy = 8;
    boardMaterial.needsUpdate = true;
  });
  const plane = new THREE.PlaneBufferGeometry((columns + 3) * square, (rows + 3) * square);
  const backMaterial = new THREE.MeshBasicMaterial({side: THREE.BackSide});
  paint(() => backMaterial.color.set(colour('missing')));
  for (const material of [boardMaterial, backMaterial]) {
    const board = new THREE.Mesh(plane, material);
    board.rotation.x = Math.PI;
    board.position.copy(boardCentre);
    chart.add(board);
  }

  // Axes of a tracker; a small body at the origin.
  const axisMaterials = ['x', 'y', 'z'].map((axis) => {
    const material = new THREE.LineBasicMaterial({linewidth: 2});
    paint(() => material.color.set(colour('axis-' + axis)));
    return material;
  });
  const rod = new THREE.CylinderBufferGeometry(.02, .02, 1, 8).translate(0, .5, 0);
  const rodMaterials = ['x', 'y', 'z'].map((axis) => {
    const material = new THREE.MeshBasicMaterial({});
    paint(() => material.color.set(colour('axis-' + axis)));
    return material;
  });
  const thickAxes = (pose, length, parent) => {
    const axes = new THREE.Group();
    [[0, 0, -Math.PI / 2], [0, 0, 0], [Math.PI / 2, 0, 0]].forEach((angles, i) => {
      const mesh = new THREE.Mesh(rod, rodMaterials[i]);
      mesh.rotation.set(...angles);
      axes.add(mesh);
    });
    axes.scale.setScalar(length);
    const frame = new THREE.Group();
    frame.applyMatrix(pose);
    frame.add(axes);
    parent.add(frame);
    return frame;
  };

  // The cameras.
  const distances = views.map(({check}) => matrix(check.transformCamChart)).map((m) => Math.hypot(m.elements[12], m.elements[13], m.elements[14])).sort((a, b) => a - b);
  const reach = distances[Math.floor(distances.length / 2)];
  const depth = reach * (views.length > 60 ? .085 : .12);
  const [fx, fy] = isList(result.normFocal, 2) ? result.normFocal : [1.35, 2.4];
  const [cx, cy] = isList(result.normCenter, 2) ? result.normCenter : [.5, .5];
  const frameCorners = [[0, 0], [1, 0], [1, 1], [0, 1]].map(([u, v]) => new THREE.Vector3((u - cx) / fx * depth, (v - cy) / fy * depth, depth));
  const eye = new THREE.Vector3();
  const frustum = [0, 1, 2, 3].flatMap((i) => [eye, frameCorners[i], frameCorners[i], frameCorners[(i + 1) % 4]]);
  const upMark = [frameCorners[0], frameCorners[1]].map((p) => p.clone());
  const tip = frameCorners[0].clone().lerp(frameCorners[1], .5).add(new THREE.Vector3(0, -depth * .12, 0));
  frustum.push(upMark[0].lerp(upMark[1], .35), tip, tip, frameCorners[0].clone().lerp(frameCorners[1], .65));
  const sides = new THREE.BufferGeometry().setFromPoints([0, 1, 2, 3].flatMap((i) => [eye, frameCorners[i], frameCorners[(i + 1) % 4]])
      .concat([0, 1, 2, 0, 2, 3].map((i) => frameCorners[i])));
  const found = isList(cross.transformCamTc, 16) ? matrix(cross.transformCamTc) : null;
  const cameras = views.map((photograph) => {
    const pose = inverse(matrix(photograph.check.transformCamChart));
    const group = new THREE.Group();
    group.applyMatrix(pose);
    chart.add(group);
    const lineMaterial = new THREE.LineBasicMaterial({});
    const sideMaterial = new THREE.MeshBasicMaterial({transparent: true, side: THREE.DoubleSide, depthWrite: false});
    const outline = lines(frustum, lineMaterial, group);
    const body = new THREE.Mesh(sides, sideMaterial);
    group.add(body);
    const item = {photograph, pose, group, body, outline};
    item.number = label(String(photograph.number), group, eye, views.length > 60 ? .018 : .022, (pen, w, h) => {
      const isIt = selected === photograph;
      pen.fillStyle = colour(isIt ? 'select' : photograph.state);
      pen.beginPath();
      pen.rect(0, 0, w, h);
      pen.fill();
      pen.fillStyle = colour(isIt ? 'card' : photograph.state === 'spare' ? 'ink' : 'stage');
    });
    item.number.center.set(.5, -.15);
    item.recolour = () => {
      const isIt = selected === photograph;
      lineMaterial.color.set(colour(isIt ? 'select' : photograph.state));
      sideMaterial.color.set(colour(isIt ? 'select' : photograph.state));
      sideMaterial.opacity = isIt ? .45 : photograph.state === 'apart' ? .35 : .13;
      item.number.repaint();
      item.number.renderOrder = isIt ? 10 : 1;
      group.scale.setScalar(isIt ? 1.35 : 1);
    };
    paint(item.recolour);
    return item;
  });

  // The camera's tracker, small at each camera and large at the selected one.
  const trackers = new THREE.Group();
  chart.add(trackers);
  const cameraTrackers = new THREE.Group();
  trackers.add(cameraTrackers);
  const at = (pose, x, y, z) => new THREE.Vector3(x, y, z).applyMatrix4(pose);
  const tie = new THREE.LineBasicMaterial({transparent: true, opacity: .6});
  paint(() => tie.color.set(colour('missing')));
  let selectedTracker = null;
  if (found) {
    const small = depth * .3;
    const poses = cameras.map(({pose}) => pose.clone().multiply(found));
    [[1, 0, 0], [0, 1, 0], [0, 0, 1]].forEach((axis, i) =>
      lines(poses.flatMap((pose) => [at(pose, 0, 0, 0), at(pose, ...axis.map((n) => n * small))]), axisMaterials[i], cameraTrackers));
    lines(cameras.flatMap(({pose}, i) => [at(pose, 0, 0, 0), at(poses[i], 0, 0, 0)]), tie, cameraTrackers);
  }

  // The chart's tracker: as found, and as stated.
  const axisLength = Math.max(square * 1.8, reach * .07);
  const chartOrigin = new THREE.Vector3();
  if (isList(cross.transformTrChart, 16)) {
    const pose = inverse(matrix(cross.transformTrChart));
    thickAxes(pose, axisLength, trackers);
    lines([chartOrigin, at(pose, 0, 0, 0)], tie, trackers);
    label('chart’s tracker, found', trackers, at(pose, 0, 0, 0), .026, plainText).center.set(.5, -.7);
  }
  if (isList(inputs.chartRotationDegrees, 3) && isList(inputs.chartTranslationMetres, 3)) {
    const [ax, ay, az] = inputs.chartRotationDegrees.map(THREE.Math.degToRad);
    const stated = new THREE.Matrix4().makeRotationX(ax).multiply(new THREE.Matrix4().makeRotationY(ay))
        .multiply(new THREE.Matrix4().makeRotationZ(az)).setPosition(...inputs.chartTranslationMetres);
    const pose = inverse(stated);
    const ghost = new THREE.LineDashedMaterial({dashSize: axisLength * .09, gapSize: axisLength * .06});
    paint(() => ghost.color.set(colour('soft')));
    const length = axisLength * 1.25;
    lines([[length, 0, 0], [0, length, 0], [0, 0, length]].flatMap((end) => [at(pose, 0, 0, 0), at(pose, ...end)]), ghost, trackers);
    const box = new THREE.EdgesGeometry(new THREE.BoxBufferGeometry(.3, .3, .3).scale(axisLength, axisLength, axisLength));
    const edges = new THREE.LineSegments(box, ghost);
    edges.computeLineDistances();
    edges.applyMatrix(pose);
    trackers.add(edges);
    lines([chartOrigin, at(pose, 0, 0, 0)], ghost, trackers);
  }

  // The views that the buttons select.
  const controls = new THREE.OrbitControls(camera, canvas);
  controls.enableKeys = false;
  controls.enableZoom = false;  // until the scene is clicked: a wheel over it scrolls the page
  canvas.addEventListener('pointerdown', () => { controls.enableZoom = true; canvas.focus({preventScroll: true}); });
  canvas.addEventListener('blur', () => { controls.enableZoom = false; });
  controls.addEventListener('change', scene.request);
  // The view from a camera shows what its photograph does: the chart, and no camera in front of it.
  const showCameras = (areShown) => {
    cameras.forEach(({group}) => { group.visible = areShown; });
    cameraTrackers.visible = areShown;
    if (selectedTracker) selectedTracker.visible = areShown;
  };
  const stepOut = () => {
    camera.fov = 36;
    showCameras(true);
  };
  controls.addEventListener('start', stepOut);
  world.updateMatrixWorld(true);
  const points = cameras.map(({group}) => group.getWorldPosition(new THREE.Vector3()));
  for (const [x, y] of [[-2, -2], [columns + 1, -2], [-2, rows + 1], [columns + 1, rows + 1]]) {
    points.push(new THREE.Vector3(x * square, y * square, 0).applyMatrix4(chart.matrixWorld));
  }
  if (found) points.push(...cameras.map(({pose}) => at(pose.clone().multiply(found), 0, 0, 0).applyMatrix4(chart.matrixWorld)));
  if (isList(cross.transformTrChart, 16)) points.push(at(inverse(matrix(cross.transformTrChart)), 0, 0, 0).applyMatrix4(chart.matrixWorld));
  const middle = new THREE.Box3().setFromPoints(points).getCenter(new THREE.Vector3());
  const look = (x, y, z) => {
    const direction = new THREE.Vector3(x, y, z).normalize();
    stepOut();
    controls.target.copy(middle);
    camera.position.copy(middle).add(direction);
    camera.lookAt(middle);
    camera.updateMatrixWorld(true);
    // As near as possible with all points in view.
    const box = canvas.getBoundingClientRect();
    const tangent = Math.tan(camera.fov * Math.PI / 360);
    const aspect = box.width / Math.max(1, box.height);
    const axes = ['x', 'y', 'z'].map((_, i) => new THREE.Vector3().setFromMatrixColumn(camera.matrixWorld, i));
    const need = points.map((point) => {
      const p = point.clone().sub(middle);
      return Math.max(Math.abs(p.dot(axes[0])) / (tangent * aspect), Math.abs(p.dot(axes[1])) / tangent) + p.dot(axes[2]);
    });
    camera.position.copy(middle).addScaledVector(direction, Math.max(...need) * 1.12 + depth * .6);
    controls.update();
    scene.request();
  };
  const lookThrough = () => {
    const item = cameras.find(({photograph}) => photograph === selected) || cameras[0];
    if (selected !== item.photograph) select(item.photograph);
    stepOut();
    showCameras(false);
    item.group.updateMatrixWorld(true);
    const facing = new THREE.Matrix4().makeRotationX(Math.PI);
    item.group.matrixWorld.clone().multiply(facing).decompose(camera.position, camera.quaternion, new THREE.Vector3());
    controls.target.copy(boardCentre.clone().applyMatrix4(chart.matrixWorld));
    // The whole photograph, and what the canvas shows around it.
    camera.fov = 2 * Math.atan(Math.max(.5 / fy, .5 / fx / camera.aspect)) * 180 / Math.PI;
    scene.request();
  };
  const looks = {all: [1, .5, .55], front: [0, 0, 1], side: [1, .08, .02], above: [0, 1, .02]};
  for (const button of document.querySelectorAll('[data-view]')) {
    button.onclick = () => button.dataset.view === 'camera' ? lookThrough() : look(...looks[button.dataset.view]);
  }
  const rotateBy = (around, up) => {
    const offset = new THREE.Spherical().setFromVector3(camera.position.clone().sub(controls.target));
    offset.theta += around;
    offset.phi = Math.min(Math.PI - .05, Math.max(.05, offset.phi + up));
    camera.position.setFromSpherical(offset).add(controls.target);
    controls.update();
  };
  const zoomBy = (factor) => {
    camera.position.sub(controls.target).multiplyScalar(factor).add(controls.target);
    controls.update();
  };
  canvas.onkeydown = (event) => {
    const act = {
      ArrowLeft: () => rotateBy(-.12, 0), ArrowRight: () => rotateBy(.12, 0), ArrowUp: () => rotateBy(0, -.1),
      ArrowDown: () => rotateBy(0, .1), '+': () => zoomBy(.9), '-': () => zoomBy(1.1),
    }[event.key];
    if (act) {
      event.preventDefault();
      act();
    }
  };

  // A click, not the end of a drag.
  let pressed = null;
  canvas.addEventListener('pointerdown', (event) => { pressed = [event.clientX, event.clientY]; });
  canvas.addEventListener('pointerup', (event) => {
    if (!pressed || Math.hypot(event.clientX - pressed[0], event.clientY - pressed[1]) > 5) return;
    const box = canvas.getBoundingClientRect();
    const x = event.clientX - box.left, y = event.clientY - box.top;
    // Selects the camera whose frame is nearest to the click on the screen.
    let best = null;
    for (const item of cameras) {
      const place = new THREE.Vector3(0, 0, depth * .6).applyMatrix4(item.group.matrixWorld).project(camera);
      const far = Math.hypot((place.x + 1) / 2 * box.width - x, (1 - place.y) / 2 * box.height - y);
      if (place.z < 1 && far < 34 && (!best || far < best.far)) best = {far, item};
    }
    select(best ? best.item.photograph : null);
  });

  const showSelected = () => {
    cameras.forEach((item) => item.recolour());
    if (selectedTracker) trackers.remove(selectedTracker);
    selectedTracker = null;
    const item = cameras.find(({photograph}) => photograph === selected);
    if (item && found) {
      selectedTracker = thickAxes(item.pose.clone().multiply(found), depth * .9, trackers);
      label('camera’s tracker', selectedTracker, chartOrigin, .026, plainText, false).center.set(1.15, .5);
    }
    scene.request();
  };
  selectionListeners.push(showSelected);
  scene.select = (number) => select(photographs[number - 1]);
  scene.selectedNumber = () => cameras.find(({group}) => group.scale.x > 1)?.photograph.number ?? null;
  // Where a camera's frame is on the canvas: tests click there.
  window.trackedcamScene = {
    selected: scene.selectedNumber,
    shownCameras: () => cameras.filter(({group}) => group.visible).length,
    place(number) {
      const item = cameras.find(({photograph}) => photograph.number === number);
      const place = new THREE.Vector3(0, 0, depth * .6).applyMatrix4(item.group.matrixWorld).project(camera);
      const box = canvas.getBoundingClientRect();
      return [(place.x + 1) / 2 * box.width, (1 - place.y) / 2 * box.height];
    },
  };
  byId('scene-numbers').onchange = (event) => {
    cameras.forEach(({number}) => { number.visible = event.target.checked; });
    scene.request();
  };
  byId('scene-trackers').onchange = (event) => {
    trackers.visible = event.target.checked;
    scene.request();
  };
  scene.recolour = () => {
    paints.forEach((what) => what());
    scene.request();
  };
  scene.still = () => {
    render();
    byId('scene-still').src = canvas.toDataURL('image/jpeg', .92);
  };
  new ResizeObserver(scene.request).observe(canvas);
  look(...looks.all);
};


// Charts: drawn again when the colours change.

const charts = [];
const chartMakers = [];
const makeChart = (maker) => chartMakers.push(maker);
const paperSizes = {bars: [1040, 250], errors: [500, 135], tall: [480, 410], plot: [1040, 240]};
const newChart = (canvas, settings) => {
  if (root.dataset.printing) {
    // The size on paper is not known while it is drawn.
    const kind = Object.keys(paperSizes).find((name) => canvas.parentElement.classList.contains(name));
    [canvas.width, canvas.height] = paperSizes[kind];
    Object.assign(settings.options, {responsive: false, devicePixelRatio: 2});
  }
  const chart = new Chart(canvas, settings);
  charts.push(chart);
  return chart;
};
const scale = (title, more = {}) => ({
  title: {display: Boolean(title), text: title, color: colour('soft')},
  grid: {color: colour('line'), borderColor: colour('line')},
  ticks: {color: colour('soft')}, ...more,
});
// The least of 1, 2, 5, 10, ... that is not below a value.
const roundUp = (value) => {
  const power = 10 ** Math.floor(Math.log10(value));
  return power * [1, 2, 5, 10].find((n) => n * power >= value * .999);
};
const tickText = (value) => String(Number(value.toPrecision(3))).replace('-', '−');
// An axis from 0, or around it, with a number at two places besides 0 whatever its range.
const evenAxis = (title, most, least = 0) => {
  const step = roundUp(most / (least < 0 ? 2 : 5));
  const ticks = [];
  for (let k = Math.ceil(least / step - 1e-9); k * step <= most * 1.0001; ++k) ticks.push({value: k * step});
  return scale(title, {min: least, max: most, afterBuildTicks: (axis) => { axis.ticks = ticks; },
    ticks: {color: colour('soft'), autoSkip: false, maxRotation: 0, callback: (value) => tickText(value)}});
};
const hatch = (stroke) => {
  const picture = document.createElement('canvas');
  picture.width = picture.height = 8;
  const pen = picture.getContext('2d');
  pen.strokeStyle = stroke;
  pen.lineWidth = 3;
  pen.beginPath();
  for (const x of [-8, 0, 8]) {
    pen.moveTo(x - 1, 9);
    pen.lineTo(x + 9, -1);
  }
  pen.stroke();
  return pen.createPattern(picture, 'repeat');
};


// 3. Which photographs agree.

let measure = 'predictedPixels';
const limits = result.limits || {};
const times = (limit, scale) => isNumber(limit) ? limit * scale : null;
const doubtAbove = (name, scale) => times((limits[name] || {}).doubt, scale);
const measures = {
  predictedPixels: {title: 'error, px', unit: ' px', limit: doubtAbove('reprojectionErrorPixels', 1), of: 'of the mean error'},
  mm: {title: 'distance, mm', unit: ' mm', limit: doubtAbove('translationSpreadMetres', 1000), of: 'of the spread'},
  degrees: {title: 'angle, deg', unit: '°', limit: times(limits.photographAngleDegrees, 1), of: 'of the axis of a photograph'},
};
const makeAgreement = () => {
  const canvas = byId('agreement-chart');
  const {title, unit, limit, of} = measures[measure];
  const ofCheck = photographs.map(({check}) => check && isNumber(check[measure]) ? check[measure] : null);
  const isOfResult = measure === 'predictedPixels' && photographs.some(({check}) => check && isNumber(check.resultPixels));
  const values = isOfResult ? photographs.map((photograph) => pixelsOf(photograph) ?? null) : ofCheck;
  const known = values.filter(isNumber);
  const keptMost = Math.max(0, ...values.filter((value, i) => isNumber(value) && photographs[i].state !== 'apart'));
  const most = Math.max(0, ...known);
  // Bars far above the others are cut off, so that a drift of the others remains visible.
  let top = Math.min(most, Math.max(4 * keptMost, 0) || most) * 1.12 || 1;
  const isLimitIn = limit !== null && limit < 4 * top;
  if (isLimitIn) top = Math.max(top, limit * 1.12);
  byId('agreement-note').textContent = limit === null ? '' : `Limit ${of}: ${fixed(limit, 1)}${unit}` + (isLimitIn ? ' (dashed)' : ', above the chart');
  const step = cross.step && isNumber(cross.step.before) ? cross.step : null;
  const stepAt = step ? photographs.indexOf(photographs.filter(({check}) => check)[step.before]) : -1;
  const marks = {
    id: 'marks',
    beforeDatasetsDraw({ctx, chartArea, scales}) {
      if (!selected) return;
      const at = photographs.indexOf(selected);
      const wide = Math.max(6, (chartArea.right - chartArea.left) / photographs.length);
      ctx.save();
      ctx.globalAlpha = .16;
      ctx.fillStyle = colour('select');
      ctx.fillRect(scales.x.getPixelForValue(at) - wide / 2, chartArea.top, wide, chartArea.bottom - chartArea.top);
      ctx.restore();
    },
    afterDatasetsDraw({ctx, chartArea, scales}) {
      ctx.save();
      ctx.font = '12px system-ui, "DejaVu Sans", sans-serif';
      if (isLimitIn) {
        const y = scales.y.getPixelForValue(limit);
        ctx.strokeStyle = ctx.fillStyle = colour('limit');
        ctx.lineWidth = 2;
        ctx.setLineDash([7, 4]);
        ctx.beginPath();
        ctx.moveTo(chartArea.left, y);
        ctx.lineTo(chartArea.right, y);
        ctx.stroke();
        ctx.textAlign = 'right';
        const text = `limit ${fixed(limit, 1)}${unit}`;
        const wide = ctx.measureText(text).width + 8;
        ctx.fillStyle = colour('card');
        ctx.fillRect(chartArea.right - wide, y - 19, wide, 17);
        ctx.fillStyle = colour('limit');
        ctx.fillText(text, chartArea.right - 4, y - 6);
      }
      ctx.setLineDash([]);
      if (isOfResult) {
        ctx.strokeStyle = colour('select');
        ctx.lineWidth = 3;
        const half = Math.min(9, (chartArea.right - chartArea.left) / photographs.length / 2);
        ofCheck.forEach((value, i) => {
          if (value === null || value > top) return;
          const [x, y] = [scales.x.getPixelForValue(i), scales.y.getPixelForValue(value)];
          ctx.stroke(new Path2D(segment([x - half, y], [x + half, y])));
        });
      }
      ctx.textAlign = 'center';
      photographs.forEach(({state}, i) => {
        const x = scales.x.getPixelForValue(i);
        if (values[i] === null) {
          ctx.strokeStyle = colour(state === 'out' ? 'apart' : 'missing');
          ctx.lineWidth = 2;
          ctx.stroke(new Path2D(cross2([x, chartArea.bottom - 7], 3.5)));
        } else if (values[i] > top) {
          ctx.fillStyle = colour('ink');
          ctx.fillText('▲', x, chartArea.top + 10);
          if (photographs.length <= 60) ctx.fillText(fixed(values[i], values[i] < 10 ? 1 : 0), x, chartArea.top - 4);
        }
      });
      if (stepAt > 0) {
        const x = (scales.x.getPixelForValue(stepAt - 1) + scales.x.getPixelForValue(stepAt)) / 2;
        ctx.strokeStyle = ctx.fillStyle = colour('wanted');
        ctx.lineWidth = 2;
        ctx.beginPath();
        ctx.moveTo(x, chartArea.top);
        ctx.lineTo(x, chartArea.bottom);
        ctx.stroke();
        ctx.textAlign = 'left';
        const text = `tracker on ${step.tracker} moved ${fixed(step.mm, 1)} mm, ${fixed(step.degrees, 2)}°`;
        const wide = ctx.measureText(text).width + 8;
        const from = Math.max(chartArea.left, Math.min(chartArea.right - wide, x < (chartArea.left + chartArea.right) / 2 ? x + 4 : x - 4 - wide));
        ctx.fillStyle = colour('card');
        ctx.fillRect(from, chartArea.top + 16, wide, 18);
        ctx.fillStyle = colour('wanted');
        ctx.fillText(text, from + 4, chartArea.top + 29);
      }
      ctx.restore();
    },
  };
  const fills = {kept: colour('kept'), spare: colour('spare'), apart: hatch(colour('apart'))};
  const chart = newChart(canvas, {
    type: 'bar',
    data: {
      labels: photographs.map(({number}) => number),
      datasets: [{
        data: values,
        backgroundColor: photographs.map(({state}) => fills[state] || colour('missing')),
        borderColor: photographs.map(({state}) => colour(state)),
        borderWidth: photographs.map(({state}) => state === 'apart' ? 1.5 : 0),
        minBarLength: 2, barPercentage: .86, categoryPercentage: .94,
      }],
    },
    options: {
      animation: false, maintainAspectRatio: false, layout: {padding: {top: 14}},
      interaction: {mode: 'index', intersect: false},
      onClick(event) {
        const at = Math.round(event.chart.scales.x.getValueForPixel(event.x));
        if (photographs[at]) select(photographs[at]);
      },
      plugins: {
        legend: {display: false},
        tooltip: {
          displayColors: false,
          callbacks: {
            title: ([item]) => `${photographs[item.dataIndex].number}  ${photographs[item.dataIndex].name.slice(-60)}`,
            label: (item) => valuesText(photographs[item.dataIndex]),
          },
        },
      },
      scales: {
        x: scale('photograph, in the order of the shoot', {grid: {display: false}, ticks: {color: colour('soft'), autoSkipPadding: 8, maxRotation: 0}}),
        y: evenAxis(title, top),
      },
    },
    plugins: [marks],
  });
  window.trackedcamBars = {
    place: (number) => [chart.scales.x.getPixelForValue(number - 1), (chart.chartArea.top + chart.chartArea.bottom) / 2],
    values, ofCheck,
  };
  canvas.onkeydown = selectByKeys;
  selectionListeners.bars = () => chart.draw();
};
selectionListeners.push(() => selectionListeners.bars?.());
for (const button of document.querySelectorAll('[data-measure]')) {
  button.onclick = () => {
    measure = button.dataset.measure;
    document.querySelectorAll('[data-measure]').forEach((other) => other.setAttribute('aria-pressed', String(other === button)));
    redrawCharts();
  };
}


// 4. Where in the picture.

const frameOf = (svg) => {
  const edge = width * .01;
  empty(svg, -edge, -edge, width + 2 * edge, height + 2 * edge);
  svgElement('rect', {x: 0, y: 0, width, height, fill: colour('card'), stroke: colour('line'), 'stroke-width': width / 400}, svg);
};
const drawCoverage = () => {
  const svg = byId('coverage-map');
  frameOf(svg);
  const across = 16, down = Math.max(1, Math.round(across * height / width));
  const [w, h] = [width / across, height / down];
  const counts = Array.from({length: down}, () => new Array(across).fill(0));
  const dots = photographs.filter(({check}) => check).map((photograph) => ({photograph, corners: pairsOf(photograph).map(([corner]) => corner)}));
  for (const {corners} of dots) {
    for (const [x, y] of corners) {
      const r = Math.floor(y / h), c = Math.floor(x / w);
      if (counts[r]?.[c] !== undefined) ++counts[r][c];
    }
  }
  const defs = svgElement('defs', {}, svg);
  const pattern = svgElement('pattern', {id: 'unseen', width: w / 5, height: w / 5, patternUnits: 'userSpaceOnUse', patternTransform: 'rotate(45)'}, defs);
  svgElement('rect', {width: w / 14, height: w / 5, fill: colour('limit'), opacity: .75}, pattern);
  let unseen = 0;
  counts.forEach((row, r) => row.forEach((count, c) => {
    if (!count) {
      ++unseen;
      svgElement('rect', {x: c * w, y: r * h, width: w, height: h, fill: 'url(#unseen)'}, svg);
    }
  }));
  const radius = width / (dots.length > 60 ? 420 : 330);
  for (const state of ['kept', 'spare', 'apart']) {
    const points = dots.filter(({photograph}) => photograph.state === state).flatMap(({corners}) => corners);
    svgElement('path', {d: points.map((corner) => circle(corner, radius)).join(''), fill: colour(state), opacity: .55}, svg);
  }
  const corners = [['upper left', 0, 0], ['upper right', across - 2, 0], ['lower left', 0, down - 2], ['lower right', across - 2, down - 2]];
  const blind = corners.filter(([, c, r]) => [0, 1].every((i) => [0, 1].every((j) => !counts[r + i]?.[c + j])));
  for (const [, c, r] of blind) {
    svgElement('rect', {x: c * w, y: r * h, width: 2 * w, height: 2 * h, fill: 'none', stroke: colour('limit'), 'stroke-width': width / 250}, svg);
  }
  const share = Math.round(100 * (1 - unseen / (across * down)));
  byId('coverage-note').textContent = `Each dot is a detected corner; they cover ${share} % of the image. Hatched: no corner.`
    + (blind.length ? ` Image corners without any: ${blind.map(([name]) => name).join(', ')}.` : ' All image corners are covered.');
  svgElement('g', {id: 'coverage-selected'}, svg);
};
const nice = (value) => {
  const power = 10 ** Math.floor(Math.log10(value));  // of 1, 2, 3, 5, 10, ...
  return power * [5, 3, 2, 1].find((n) => n * power <= value * 1.001);
};
const drawResiduals = () => {
  const svg = byId('residual-map');
  frameOf(svg);
  const withAll = byId('residual-all').checked;
  const shown = photographs.filter(({check, state}) => check && (withAll || state !== 'apart'));
  const arrows = shown.flatMap((photograph) => pairsOf(photograph).filter(([, b]) => isList(b, 2)).map(([a, b]) => ({photograph, a, b})));
  const lengths = arrows.filter(({photograph}) => photograph.state !== 'apart').map(({a, b}) => Math.hypot(b[0] - a[0], b[1] - a[1])).sort((p, q) => p - q);
  if (!lengths.length) return;
  const usual = Math.max(lengths[Math.floor(lengths.length * .9)], 1e-4);
  const factor = nice(width / 28 / usual);
  const tip = ({a, b}) => [a[0] + (b[0] - a[0]) * factor, a[1] + (b[1] - a[1]) * factor];
  const isSelected = ({photograph}) => photograph === selected;
  const path = (list) => list.map((arrow) => {
    const end = tip(arrow);
    const angle = Math.atan2(end[1] - arrow.a[1], end[0] - arrow.a[0]);
    const barb = Math.min(width / 110, Math.hypot(end[1] - arrow.a[1], end[0] - arrow.a[0]) * .35);
    const back = (by) => [end[0] - barb * Math.cos(angle + by), end[1] - barb * Math.sin(angle + by)];
    return segment(arrow.a, end) + segment(end, back(.45)) + segment(end, back(-.45));
  }).join('');
  const clip = svgElement('clipPath', {id: 'in-frame'}, svgElement('defs', {}, svg));
  svgElement('rect', {width, height}, clip);
  const inside = svgElement('g', {'clip-path': 'url(#in-frame)'}, svg);
  for (const state of ['spare', 'kept', 'apart']) {
    const list = arrows.filter((arrow) => arrow.photograph.state === state && !isSelected(arrow));
    svgElement('path', {d: path(list), fill: 'none', stroke: colour(state), 'stroke-width': width / 900, opacity: selected ? .4 : .8}, inside);
  }
  svgElement('path', {d: path(arrows.filter(isSelected)), fill: 'none', stroke: colour('select'), 'stroke-width': width / 450}, inside);
  // The scale, as an arrow of a round length.
  const unit = nice(width / 14 / factor);
  const [x, y] = [width * .035, height * .945];
  svgElement('rect', {x: x - width * .018, y: y - height * .06, width: unit * factor + width * .15, height: height * .095, rx: width / 150, fill: colour('card'), opacity: .9}, svg);
  svgElement('path', {d: segment([x, y], [x + unit * factor, y]) + segment([x, y - 9], [x, y + 9]) + segment([x + unit * factor, y - 9], [x + unit * factor, y + 9]), stroke: colour('ink'), 'stroke-width': width / 500, fill: 'none'}, svg);
  const text = svgElement('text', {x: x + unit * factor + width * .015, y: y + width * .008}, svg, `${Number(unit.toPrecision(2))} px`);
  text.style.fontSize = width * .024 + 'px';
  text.style.fill = colour('ink');
  byId('residual-note').textContent = `From each detected corner to the predicted one, enlarged ${Number(factor.toPrecision(3))} times; the bar is ${Number(unit.toPrecision(2))} px.`;
};
const drawPicture = () => {
  const group = byId('coverage-selected');
  group.replaceChildren();
  if (selected?.check) {
    svgElement('path', {d: pairsOf(selected).map(([corner]) => circle(corner, width / 190)).join(''), fill: colour('select')}, group);
  }
  drawResiduals();
};


// 5. Which views are missing.

const shapes = (state) => state === 'apart' ? 'rectRot' : 'circle';
const drawTilts = () => {
  const svg = byId('tilt-map');
  const size = 460, middle = size / 2, reach = size * .415;
  empty(svg, 0, 0, size, size * .98);
  const known = photographs.filter(({check}) => check && isNumber(check.tiltDegrees) && isNumber(check.tiltDirectionDegrees));
  const wanted = (cross.suggestedViews || []).filter((view) => isNumber(view.tiltDegrees) && isNumber(view.tiltDirectionDegrees));
  const most = Math.max(45, ...[...known.map(({check}) => check), ...wanted].map((view) => view.tiltDegrees));
  const step = most > 60 ? 30 : 15;
  const outer = Math.ceil(most / step) * step;
  const place = (tilt, direction) => [middle + tilt / outer * reach * Math.cos(direction * Math.PI / 180), middle + tilt / outer * reach * Math.sin(direction * Math.PI / 180)];
  const say = (text, x, y, anchor = 'middle') => {
    const element = svgElement('text', {x, y, 'text-anchor': anchor, stroke: colour('sunk'), 'stroke-width': 4, 'paint-order': 'stroke'}, svg, text);
    element.style.fontSize = '13px';
  };
  for (let tilt = step; tilt <= outer; tilt += step) {
    svgElement('circle', {cx: middle, cy: middle, r: tilt / outer * reach, fill: 'none', stroke: colour('line'), 'stroke-width': 1.3}, svg);
  }
  for (let direction = 0; direction < 360; direction += 45) {
    svgElement('path', {d: segment(place(0, 0), place(outer, direction)), stroke: colour('line'), 'stroke-width': 1}, svg);
  }
  say('right', size - 3, middle - 6, 'end');
  say('left', 3, middle - 6, 'start');
  say('up', middle, middle - reach - 8);
  say('down', middle, middle + reach + 17);
  for (const photograph of known) {
    const at = place(photograph.check.tiltDegrees, photograph.check.tiltDirectionDegrees);
    const isIt = photograph === selected;
    const mark = photograph.state === 'apart'
      ? svgElement('path', {d: cross2(at, isIt ? 8 : 5), stroke: colour(isIt ? 'select' : 'apart'), 'stroke-width': 3, fill: 'none'}, svg)
      : svgElement('circle', {cx: at[0], cy: at[1], r: isIt ? 9 : 5.5, fill: colour(isIt ? 'select' : photograph.state), stroke: colour('sunk'), 'stroke-width': 1}, svg);
    svgElement('title', {}, mark, `${photograph.number}: ${fixed(photograph.check.tiltDegrees, 0)}° tilt`);
    mark.style.cursor = 'pointer';
    mark.addEventListener('click', () => select(photograph));
  }
  for (let tilt = step; tilt <= outer; tilt += step) {
    const [x, y] = place(tilt, -68);
    say(tilt + '°', x + 4, y + 4, 'start');
  }
  wanted.forEach((view, i) => {
    const [x, y] = place(view.tiltDegrees, view.tiltDirectionDegrees);
    svgElement('path', {d: `M${x} ${y - 10}L${x + 10} ${y}L${x} ${y + 10}L${x - 10} ${y}Z`, fill: 'none', stroke: colour('wanted'), 'stroke-width': 2.6}, svg);
    const number = svgElement('text', {x, y: y + 4.5, 'text-anchor': 'middle'}, svg, String(i + 1));
    number.style.fontSize = '12px';
    number.style.fill = colour('wanted');
  });
};
const makeRolls = () => {
  const known = photographs.filter(({check}) => check && isNumber(check.rollDegrees) && isNumber(check.distanceMetres));
  const wanted = (cross.suggestedViews || []).filter((view) => isNumber(view.rollDegrees) && isNumber(view.distanceMetres));
  const most = Math.max(30, ...[...known.map(({check}) => check), ...wanted].map((view) => Math.abs(view.rollDegrees)));
  const reach = Math.min(180, Math.ceil(most / 30) * 30);
  const isIt = (photograph) => photograph === selected;
  const chart = newChart(byId('roll-chart'), {
    type: 'scatter',
    data: {
      datasets: [{
        data: known.map(({check}) => ({x: check.rollDegrees, y: check.distanceMetres})),
        pointStyle: known.map(({state}) => shapes(state)),
        pointRadius: (context) => known[context.dataIndex] && isIt(known[context.dataIndex]) ? 9 : 5.5,
        pointBackgroundColor: (context) => known[context.dataIndex] ? colour(isIt(known[context.dataIndex]) ? 'select' : known[context.dataIndex].state) : '',
        pointBorderColor: colour('card'),
      }, {
        data: wanted.map((view) => ({x: view.rollDegrees, y: view.distanceMetres})),
        pointStyle: 'rectRot', pointRadius: 10, pointBackgroundColor: 'transparent', pointBorderColor: colour('wanted'), pointBorderWidth: 2.6,
      }],
    },
    options: {
      animation: false, maintainAspectRatio: false, clip: false,
      onClick(event, items) {
        const item = items.find(({datasetIndex}) => datasetIndex === 0);
        if (item) select(known[item.index]);
      },
      plugins: {
        legend: {display: false},
        tooltip: {callbacks: {label: (item) => `${item.datasetIndex ? 'wanted ' + (item.dataIndex + 1) : known[item.dataIndex].number}: roll ${fixed(item.parsed.x, 0)}°, ${fixed(item.parsed.y, 2)} m`}},
      },
      scales: {
        x: scale('roll, deg', {min: -reach, max: reach, ticks: {color: colour('soft'), stepSize: reach > 90 ? 60 : reach > 30 ? 30 : 10}}),
        y: scale('distance, m', {grace: '8%'}),
      },
    },
    plugins: [{
      id: 'numbers',
      afterDatasetsDraw({ctx, scales}) {
        ctx.save();
        ctx.font = '12px system-ui, "DejaVu Sans", sans-serif';
        ctx.fillStyle = colour('wanted');
        ctx.textAlign = 'center';
        wanted.forEach((view, i) => ctx.fillText(String(i + 1), scales.x.getPixelForValue(view.rollDegrees), scales.y.getPixelForValue(view.distanceMetres) + 4.5));
        ctx.restore();
      },
    }],
  });
  selectionListeners.rolls = () => chart.update('none');
};
selectionListeners.push(() => selectionListeners.rolls?.());


// 6. The result against the cross-check.

const makeErrors = () => {
  for (const canvas of document.querySelectorAll('[data-errors]')) {
    const [transform, part] = canvas.dataset.errors.split(' ');
    const known = (value) => isNumber(value) ? value : NaN;
    const rows = cross.comparison[transform][part].map(({axis, difference, half}) => ({
      axis, difference: known(difference), half: known(half)}));
    const reach = 2 * roundUp(Math.max(...rows.flatMap(({difference, half}) => [Math.abs(difference), half]).filter(Number.isFinite), 1e-6) * .56);
    newChart(canvas, {
      data: {
        labels: rows.map(({axis}) => axis),
        datasets: [{
          type: 'scatter', order: 1,
          data: rows.flatMap(({axis, difference}) => Number.isFinite(difference) ? [{x: difference, y: axis}] : []),
          pointStyle: 'rectRot', pointRadius: 7, pointBorderColor: colour('card'), pointBorderWidth: 1.5,
          pointBackgroundColor: rows.filter(({difference}) => Number.isFinite(difference)).map(({difference, half}) => Math.abs(difference) > half ? colour('apart') : colour('ink')),
        }, {
          type: 'bar', order: 2, indexAxis: 'y', barThickness: 12, minBarLength: 3,
          data: rows.map(({half}) => Number.isFinite(half) ? [-half, half] : null),
          backgroundColor: colour('kept'), borderRadius: 3, borderSkipped: false,
        }],
      },
      options: {
        animation: false, maintainAspectRatio: false, indexAxis: 'y',
        plugins: {legend: {display: false}, tooltip: {enabled: false}},
        scales: {
          x: Object.assign(evenAxis('', reach, -reach), {type: 'linear', position: 'bottom',
            grid: {color: (context) => colour(context.tick && context.tick.value === 0 ? 'soft' : 'line'), borderColor: colour('line')}}),
          y: scale('', {type: 'category', labels: rows.map(({axis}) => axis), offset: true, grid: {display: false}}),
        },
      },
    });
  }
};


// 7. What it means on screen.

const makeScreen = () => {
  const rows = (cross.onScreen || []).filter(({distanceMetres}) => isNumber(distanceMetres));
  const line = (label, of, name, dash, point) => ({
    label, data: rows.filter((row) => isNumber(of(row))).map((row) => ({x: row.distanceMetres, y: of(row)})),
    borderColor: colour(name), backgroundColor: colour(name), borderDash: dash, pointStyle: point, pointRadius: 4, borderWidth: 2.2, tension: .25, showLine: true,
  });
  const datasets = [
    line('middle', ({middle}) => middle?.pixels, 'ink', [], 'circle'),
    line('worst corner', ({corner}) => corner?.pixels, 'kept', [7, 4], 'triangle'),
    line('result against cross-check', ({libraryApart}) => libraryApart, 'apart', [10, 3, 2, 3], 'rectRot'),
  ].filter(({data}) => data.length);
  newChart(byId('screen-chart'), {
    type: 'scatter', data: {datasets},
    options: {
      animation: false, maintainAspectRatio: false,
      interaction: {mode: 'x', intersect: false},
      layout: {padding: {right: 8}},
      plugins: {
        legend: {position: 'top', align: 'start', labels: {color: colour('ink'), boxWidth: 34, boxHeight: 0, padding: 18}},
        tooltip: {callbacks: {title: ([item]) => `at ${fixed(item.parsed.x, 2)} m`, label: (item) => `${item.dataset.label}: ${fixed(item.parsed.y, 2)} px`}},
      },
      scales: {
        x: scale('distance, m', {min: rows[0]?.distanceMetres, max: rows[rows.length - 1]?.distanceMetres, type: rows.length > 1 && rows.every(({distanceMetres}) => distanceMetres > 0) ? 'logarithmic' : 'linear',
          ticks: {color: colour('soft'), autoSkip: false, maxRotation: 0, callback: (value) => rows.some(({distanceMetres}) => distanceMetres === value) ? String(Number(value.toFixed(2))) : ''},
          afterBuildTicks: (axis) => { axis.ticks = rows.map(({distanceMetres}) => ({value: distanceMetres})); }}),
        y: scale('error, px', {beginAtZero: true}),
      },
    },
  });
};

let shownDistance = null;  // an index of the result's distances
const drawScreenMap = () => {
  const {columns, rows, seen} = cross.imageCells || {};
  const distances = cross.onScreen || [];
  const isWhole = ({cellPixels}) => Array.isArray(cellPixels) && cellPixels.length === columns * rows;
  if (!(columns > 0 && rows > 0 && columns * rows <= 1000 && distances.length && distances.every(isWhole))) return;
  const middle = distances.findIndex(({distanceMetres}) => distanceMetres >= 2);
  shownDistance = shownDistance ?? Math.max(middle, 0);
  byId('screen-by-place').hidden = false;
  for (const button of document.querySelectorAll('[data-screen]')) {
    button.setAttribute('aria-pressed', String(Number(button.dataset.screen) === shownDistance));
    button.onclick = () => {
      shownDistance = Number(button.dataset.screen);
      drawScreenMap();
    };
  }
  const {distanceMetres, cellPixels} = distances[shownDistance];
  const most = Math.max(...distances.flatMap((at) => at.cellPixels.filter(isNumber)), 1e-9);
  const svg = byId('screen-map');
  frameOf(svg);
  const [w, h] = [width / columns, height / rows];
  const pattern = svgElement('pattern', {id: 'not-seen', width: w / 5, height: w / 5, patternUnits: 'userSpaceOnUse', patternTransform: 'rotate(45)'}, svgElement('defs', {}, svg));
  svgElement('rect', {width: w / 14, height: w / 5, fill: colour('limit'), opacity: .6}, pattern);
  cellPixels.forEach((pixels, i) => {
    const [x, y] = [i % columns * w, Math.floor(i / columns) * h];
    const box = {x, y, width: w, height: h};
    svgElement('rect', {...box, fill: colour('kept'), opacity: isNumber(pixels) ? .08 + .6 * pixels / most : 0}, svg);
    if (!(seen || [])[i]) svgElement('rect', {...box, fill: 'url(#not-seen)'}, svg);
    const text = svgElement('text', {x: x + w / 2, y: y + h / 2, 'text-anchor': 'middle', 'dominant-baseline': 'central'}, svg, fixed(pixels, 1));
    text.style.fontSize = `${w / 3.2}px`;
    text.style.fill = colour('ink');
  });
  byId('screen-note').textContent = `Pixels within which things at ${fixed(distanceMetres, 2)} m appear (95 %), by their place in the image.`
    + ((seen || []).every((cell) => cell) ? '' : ' Hatched: no chart was there, and a distortion that the lens model leaves out would not show.');
};


// All graphics. One that fails does not stop the others.

const attempt = (draw) => {
  try {
    draw();
  } catch (error) {
    console.error(error);
  }
};
const redrawCharts = () => {
  charts.splice(0).forEach((chart) => chart.destroy());
  chartMakers.forEach(attempt);
};
const redraw = () => {
  attempt(drawGallery);
  if (!cross) return;
  [drawCoverage, drawPicture, drawTilts, drawScreenMap].forEach(attempt);
  Chart.defaults.font.family = getComputedStyle(document.body).fontFamily;
  Chart.defaults.font.size = 12;
  redrawCharts();
  attempt(scene.recolour);
};
if (cross) {
  [makeAgreement, makeRolls, makeErrors, makeScreen].forEach(makeChart);
  selectionListeners.push(() => [drawPicture, drawTilts].forEach(attempt));
  byId('residual-all').onchange = drawResiduals;
  attempt(makeScene);
}
redraw();
document.body.dataset.selected = '';
document.body.dataset.drawn = 'true';

matchMedia('(prefers-color-scheme: dark)').addEventListener('change', redraw);
// Paper is white, and shows the scene as a still image.
addEventListener('beforeprint', () => {
  root.dataset.printing = 'true';
  redraw();
  attempt(scene.still);
});
addEventListener('afterprint', () => {
  delete root.dataset.printing;
  redraw();
});
})();
